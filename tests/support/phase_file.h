// The model file of the frequency dependent (phase) model, read and evaluated on its own.
#pragma once

#include "support/dense_functions.h"

#include <string>
#include <vector>

namespace lcp::test {

// Poles with a positive real part, or without their conjugate beside them.
int badPoles(const std::vector<Wide>& poles);

struct PhaseFile {
  int n = 0;
  std::vector<Wide> yPoles;
  std::vector<Dense> yResidues; // one matrix a pole
  Dense yConstant;
  std::vector<long double> delays;           // s
  std::vector<std::vector<Wide>> hPoles;     // by group
  std::vector<std::vector<Dense>> hResidues; // by group and pole
  std::string trouble;                       // empty when the file is as it should be

  Dense Yc(Wide s) const;
  Dense H(Wide s) const;
  int badPoles() const;
};

PhaseFile readPhaseFile(const std::string& text);

} // namespace lcp::test

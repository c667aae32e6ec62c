// Written files read back, and the model file of the frequency dependent (phase) model evaluated on
// its own. Words and columns are held by the whole runs.
#pragma once

#include "support/dense_functions.h"

#include <string>
#include <vector>

namespace lcp::test {

// The numbers of a text in their order from a word on; all other words are left out, brackets and
// commas part words.
class Numbers {
public:
  explicit Numbers(const std::string& text, const std::string& from = "");

  bool early = false; // asked for more than there are

  std::size_t left() const { return all.size() - at; }
  long double number();
  double real() { return static_cast<double>(number()); }
  std::size_t count() { return static_cast<std::size_t>(number()); }
  Wide complex();

private:
  std::vector<long double> all;
  std::size_t at = 0;
};

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

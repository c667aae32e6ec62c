// The functions of a fitted model against those of the line: at the points of the fit, between
// them, and outside the band.
#pragma once

#include "companions/shared/model_file.h"
#include "companions/verify/verdicts.h"

#include <vector>

namespace lcp::companions {

struct FrequencyRange {
  std::string name;
  std::string_view limit; // of the quantity's own limit when empty
  std::vector<double> f;  // Hz
};

// The points of the fit that the description asks for, the same ten times finer, a decade below and
// a decade above. Of a table of Y and Z its rows and the points between them alone: it says nothing
// about what lies outside.
std::vector<FrequencyRange> fitRanges();

// Phase model: Yc (of its largest magnitude at the points of the fit) and H (of 1).
std::vector<Finding> comparePhase(const ModelFile& file, double length, const Limits& limits);

// MFDTD model: Z, of its largest magnitude at the points of the fit.
std::vector<Finding> compareSeries(const ModelFile& file, const Limits& limits);

} // namespace lcp::companions

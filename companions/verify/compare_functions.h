// The functions of a fitted model against those of the line: at the points of the fit, between
// them, and outside the band.
#pragma once

#include "companions/shared/model_file.h"
#include "companions/verify/verdicts.h"

#include <vector>

namespace lcp::companions {

struct FrequencyRange {
  std::string name;
  bool inside;            // of the band: the quantity's own limit, and largest value, count
  std::string_view limit; // outside it; empty where nothing is judged
  std::vector<double> f;  // Hz

  std::string_view limitOf(std::string_view own) const { return inside ? own : limit; }
};

// From a to b in so many equal ratios.
std::vector<double> ratios(double a, double b, int steps);

// The points of the fit that the description asks for, the same ten times finer, a decade below, a
// decade above, and zero frequency: a microhertz, at which resistances and conductances are all
// that is left. A line without conductances has no values there that could be met. Of a table of Y
// and Z its rows and the points between them alone: it says nothing about what lies outside.
std::vector<FrequencyRange> fitRanges();

// Phase model: Yc (of its largest magnitude at the points of the fit) and H (of 1).
std::vector<Finding> comparePhase(const ModelFile& file, double length, const Limits& limits);

// MFDTD model: Z, of its largest magnitude at the points of the fit.
std::vector<Finding> compareSeries(const ModelFile& file, const Limits& limits);

} // namespace lcp::companions

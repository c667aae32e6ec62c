// Frequencies at which a fitted function and the line are compared.
#pragma once

#include <string>
#include <string_view>
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

} // namespace lcp::companions

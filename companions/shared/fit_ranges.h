// Frequencies at which a fitted function is compared with the line.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace lcp::companions {

struct FrequencyRange {
  std::string name;
  bool inside;            // inside the band: uses the quantity's own limit and largest value
  std::string_view limit; // limit used outside the band; empty for information only
  std::vector<double> f;  // Hz

  std::string_view limitOf(std::string_view own) const { return inside ? own : limit; }
};

// From a to b in `steps` equal ratios.
std::vector<double> ratios(double a, double b, int steps);

// Ranges: the fit points of the description, points between them (ten times finer), a decade below,
// a decade above, and zero frequency, which is a microhertz, where only resistances and
// conductances remain. At zero frequency a line without conductances is not judged. For a table of
// Y and Z only its rows and the points between them, since it says nothing about other frequencies.
std::vector<FrequencyRange> fitRanges();

} // namespace lcp::companions

// Frequencies at which a fitted function and the line are compared.
#pragma once

#include <string>
#include <string_view>
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

} // namespace lcp::companions

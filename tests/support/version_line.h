// The version line that ends a run of which routines up to a date ran.
#pragma once

#include "diag/version_stamp.h"

#include <algorithm>
#include <fmt/format.h>
#include <string>

namespace lcp::test {

// Decompositions of other tests in the same process have left their dates.
inline std::string versionLine(int date) {
  return fmt::format(" *** Version {} ***", std::max(date, NVDATE(800101, EIGENSTAMP)));
}

} // namespace lcp::test

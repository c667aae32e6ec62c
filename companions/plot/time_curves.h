// The cases of a simulation as curves of a page.
#pragma once

#include "companions/plot/functions.h"
#include "companions/verify/in_time.h"

namespace lcp::companions {

// [{"id":, "title":, "unit":, "peak":, "step":, "t":, "quantities": [{"name":, "line":, "model":,
// "stepped":}]}]: packed numbers at common times t (ms), step in us, peak over all quantities. Of
// many quantities the first one and those with the largest deviations are kept.
Json timeCurvesOf(const std::vector<CaseCurves>& cases);

// Positions of the points to keep so that straight lines between them stay within a share of its
// height of every curve, or so many of them that come nearest to it.
std::vector<std::size_t> keptOf(const std::vector<std::vector<double>>& curves, double share,
                                std::size_t most);

} // namespace lcp::companions

// What the run that made the model said on its console, against what the file holds.
#pragma once

#include "companions/shared/verdicts.h"

#include <string>
#include <vector>

namespace lcp::companions {

// Steps of the mode tracking that the search gave up; of a phase model the errors of Yc and H that
// were printed last, against those of the file at the points of the fit, among the findings.
std::vector<Finding> compareConsole(const std::string& console, const std::vector<Finding>& found,
                                    const Limits& limits);

} // namespace lcp::companions

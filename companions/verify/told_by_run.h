// Compares the console of the run that made the model with the model file.
#pragma once

#include "companions/shared/verdicts.h"

#include <string>
#include <vector>

namespace lcp::companions {

// Counts the steps of the mode tracking that were given up. For a phase model, compares the last
// printed errors of Yc and H with those of the file at the fit points, which are among the
// findings.
std::vector<Finding> compareConsole(const std::string& console, const std::vector<Finding>& found,
                                    const Limits& limits);

} // namespace lcp::companions

// Passivity of the line itself; that of a model, phasePassivity, is declared with the verdicts.
#pragma once

#include "companions/shared/model_file.h"
#include "companions/shared/verdicts.h"

#include <vector>

namespace lcp::companions {

// The real parts of Z and Y of the line, which no network has negative, over the ranges of the fit;
// without one at the frequencies of the model.
std::vector<Finding> linePassivity(const Limits& limits);

} // namespace lcp::companions

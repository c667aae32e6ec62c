// Passivity of a model and of the line itself.
#pragma once

#include "companions/shared/model_file.h"
#include "companions/shared/verdicts.h"

#include <vector>

namespace lcp::companions {

// Phase model: Hermitian part of the nodal admittance of both ends, over the band of the fit and
// two decades beyond it on both sides.
std::vector<Finding> phasePassivity(const ModelFile& file, const Limits& limits);

// Line: real parts of Z and Y, which must not be negative, over the ranges of the fit; for a model
// without a fit, at the frequencies of the model.
std::vector<Finding> linePassivity(const Limits& limits);

} // namespace lcp::companions

// Passivity of a model and of the line itself.
#pragma once

#include "companions/shared/model_file.h"
#include "companions/shared/verdicts.h"

#include <vector>

namespace lcp::companions {

// Of a phase model: the Hermitian part of the nodal admittance of both ends, over the band of the
// fit and two decades beyond it on both sides.
std::vector<Finding> phasePassivity(const ModelFile& file, const Limits& limits);

// The real parts of Z and Y of the line, which no network has negative, over the ranges of the fit;
// without one at the frequencies of the model.
std::vector<Finding> linePassivity(const Limits& limits);

} // namespace lcp::companions

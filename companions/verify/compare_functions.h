// The functions of a fitted model against those of the line: at the points of the fit, between
// them, and outside the band.
#pragma once

#include "companions/shared/model_file.h"
#include "companions/shared/verdicts.h"

#include <vector>

namespace lcp::companions {

// Phase model: Yc (of its largest magnitude at the points of the fit) and H (of 1).
std::vector<Finding> comparePhase(const ModelFile& file, double length, const Limits& limits);

// MFDTD model: Z, of its largest magnitude at the points of the fit.
std::vector<Finding> compareSeries(const ModelFile& file, const Limits& limits);

} // namespace lcp::companions

// Compares the functions of a fitted model with those of the line.
#pragma once

#include "companions/shared/model_file.h"
#include "companions/shared/verdicts.h"

#include <vector>

namespace lcp::companions {

// Phase model: Yc, relative to its largest magnitude at the fit points, and H, absolute; at the
// points of the fit, between them, and outside the band.
std::vector<Finding> comparePhase(const ModelFile& file, double length, const Limits& limits);

// Mode model: the same functions, which its modes make in phases.
std::vector<Finding> compareModesInPhases(const ModelFile& file, double length,
                                          const Limits& limits);

// MFDTD model: Z, relative to its largest magnitude at the fit points, and its constant Y, relative
// to the largest magnitude of the frequency.
std::vector<Finding> compareSeries(const ModelFile& file, const Limits& limits);

} // namespace lcp::companions

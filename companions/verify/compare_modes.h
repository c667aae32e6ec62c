// Models by modes, and the pi circuit, against the line.
#pragma once

#include "companions/shared/model_file.h"
#include "companions/shared/verdicts.h"

#include <vector>

namespace lcp::companions {

// Mode model: surge impedance and propagation function of each mode over the ranges of the fit.
std::vector<Finding> compareModeFits(const ModelFile& file, double length, const Limits& limits);

// Bergeron model: travel time and surge impedance at the steady state frequency, resistance at it
// and at that of the losses.
std::vector<Finding> compareBergeron(const ModelFile& file, double length, const Limits& limits);

// PI model: shunt and series matrices of the exact pi at the steady state frequency.
std::vector<Finding> comparePi(const ModelFile& file, double length, const Limits& limits);

// Conditioning and continuity of the line's transformation over the points of the fit.
std::vector<Finding> checkTransformation(const Limits& limits);

} // namespace lcp::companions

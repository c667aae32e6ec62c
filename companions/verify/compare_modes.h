// Compares models by modes, and the pi circuit, with the line.
#pragma once

#include "companions/shared/model_file.h"
#include "companions/shared/verdicts.h"

#include <vector>

namespace lcp::companions {

// Mode model: surge impedance and propagation function of each mode, over the ranges of the fit.
std::vector<Finding> compareModeFits(const ModelFile& file, double length, const Limits& limits);

// Bergeron model: travel time, surge impedance and resistance at the steady-state frequency, and
// resistance at the loss frequency.
std::vector<Finding> compareBergeron(const ModelFile& file, double length, const Limits& limits);

// PI model: shunt and series matrices of the exact pi circuit at the steady-state frequency.
std::vector<Finding> comparePi(const ModelFile& file, double length, const Limits& limits);

// Conditioning and continuity of the line's transformation over the fit points.
std::vector<Finding> checkTransformation(const Limits& limits);

} // namespace lcp::companions

// Compares what the ends of a model show with those of the line: sequence values at the steady
// state frequency and resistances at zero frequency.
#pragma once

#include "companions/shared/model_file.h"
#include "companions/shared/verdicts.h"

#include <vector>

namespace lcp::companions {

// Series impedance and resistance, and shunt susceptance of the exact pi circuit between the phases
// of both ends, other conductors grounded; by sequence of the first three phases (Z1, R1, B1, Z0,
// R0, B0), or of one or two phases by their own values (Z, R, B).
std::vector<Finding> compareTerminals(const ModelFile& file, double length, const Limits& limits);

} // namespace lcp::companions

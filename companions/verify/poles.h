// Checks poles, residues and delays of a model file.
#pragma once

#include "companions/shared/model_file.h"
#include "companions/shared/verdicts.h"

#include <vector>

namespace lcp::companions {

// Counts unstable and unpaired poles and residues that are not conjugate, and finds the largest
// ratio of residue to pole.
std::vector<Finding> checkPoles(const ModelFile& file, const Limits& limits);

// Compares the delays of a phase or mode model with the travel times of the modes at the top of the
// band and with the speed of light.
std::vector<Finding> checkDelays(const ModelFile& file, double length);

} // namespace lcp::companions

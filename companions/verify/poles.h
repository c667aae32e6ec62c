// Poles, residues and delays of a model file.
#pragma once

#include "companions/shared/model_file.h"
#include "companions/shared/verdicts.h"

#include <vector>

namespace lcp::companions {

// Unstable and unpaired poles, residues that are not conjugate, the largest residue over its pole.
std::vector<Finding> checkPoles(const ModelFile& file, const Limits& limits);

// Delays of a phase or mode model against the travel times of the modes at the top of the band, and
// against light.
std::vector<Finding> checkDelays(const ModelFile& file, double length, const Limits& limits);

} // namespace lcp::companions

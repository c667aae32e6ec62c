// corvo-verify: compares the model in a model file with the line computed directly.
#pragma once

#include "companions/shared/model_file.h"
#include "companions/shared/verdicts.h"

#include <span>
#include <vector>

namespace lcp::companions {

// All findings on a model file for a length in m, using the description read by readHere.
std::vector<Finding> verified(const ModelFile& file, double length, const Limits& limits);

// Entry point. Exit status: 0 all good, 1 something is bad, 2 no result.
int verifyModel(std::span<char* const> arguments);

} // namespace lcp::companions

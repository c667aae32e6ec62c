// corvo-verify: the line computed directly against the model as its file has it.
#pragma once

#include "companions/shared/model_file.h"
#include "companions/shared/verdicts.h"

#include <span>
#include <vector>

namespace lcp::companions {

// Everything that there is to say of a model file, for the length in metres, over the run that
// readHere has read.
std::vector<Finding> verified(const ModelFile& file, double length, const Limits& limits);

// Exit status: 0 all good, 1 something bad, 2 it cannot be told.
int verifyModel(std::span<char* const> arguments);

} // namespace lcp::companions

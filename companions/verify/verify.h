// corvo-verify: the line computed directly against the model as its file has it.
#pragma once

#include <span>

namespace lcp::companions {

// Exit status: 0 all good, 1 something bad, 2 it cannot be told.
int verifyModel(std::span<char* const> arguments);

} // namespace lcp::companions

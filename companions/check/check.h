// corvo-check: reports what a description file says, and what in it has no effect or is likely
// wrong.
#pragma once

#include <span>

namespace lcp::companions {

// Exit status: 0 nothing found or notes alone, 1 findings, 2 the program would refuse the file.
int checkDescription(std::span<char* const> arguments);

} // namespace lcp::companions

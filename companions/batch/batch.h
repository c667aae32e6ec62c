// corvo-batch: many runs of corvo, each in a folder of its own, and one table of what they told.
#pragma once

#include <span>

namespace lcp::companions {

// Takes the name of the program as its first argument. Exit status: 0 every case made its model, 2
// with warnings of some, 1 a case failed or was not run, 3 nothing was begun, 128 + n behind signal
// n.
int runBatch(std::span<char* const> arguments);

} // namespace lcp::companions

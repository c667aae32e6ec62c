// corvo-batch: many runs of corvo, each in its own folder, and one table of the results.
#pragma once

#include <span>

namespace lcp::companions {

// The first argument is the name of the program. Exit status: 0 if every case made its model, 2 if
// some did so with warnings, 1 if a case failed or was not run, 3 if nothing was started, 128 + n
// after signal n.
int runBatch(std::span<char* const> arguments);

} // namespace lcp::companions

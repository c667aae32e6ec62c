// The one way out of the process.
#pragma once

namespace lcp {

// Ends the process. Status 0: clean run; 1: fatal error; 2: a warning was given; 12: message
// package. The console is written out first; if that fails, the status is 1 whatever was asked for.
[[noreturn]] void stop(int status);

} // namespace lcp

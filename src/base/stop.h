// The one way out of the process.
#pragma once

namespace lcp {

// Ends the process. Status 0: clean run; 1: fatal error; 2: a warning was given; 12: message
// package. Files that are open are left as their early end says, and the console is written out; if
// one of these fails, the status is 1 whatever was asked for.
[[noreturn]] void stop(int status);

} // namespace lcp

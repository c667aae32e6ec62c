// Ends the process: every exit of the program goes through here.
#pragma once

namespace lcp {

// Ends the process. Status 0: clean run; 1: fatal error; 2: a warning was given; 4, 8, 12 or 16:
// message package. Open files are left as their EarlyEnd says and the console is written out; if
// either fails, the status is 1.
[[noreturn]] void stop(int status);

} // namespace lcp

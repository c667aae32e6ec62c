// The run from start to end.
#pragma once

#include <span>

namespace lcp {

// Runs the program with its arguments (without its name) and ends the process with the exit status
// of the run: 0 clean, 1 fatal error, 2 a warning was given, 12 message package.
[[noreturn]] void LCPMAIN(std::span<char* const> arguments);

// From now on, denormal results and operands are treated as zero in this thread.
void flushDenormals();

// Solves one length step of the description, by its route: writes model file FOUTM and report
// FOUTR.
void solveStep();

} // namespace lcp

// The run from start to end.
#pragma once

#include <span>

namespace lcp {

// Runs the program with its arguments (without its name) and ends the process with the run's exit
// status: 0 clean, 1 fatal, 2 a warning was given, 12 message package.
[[noreturn]] void LCPMAIN(std::span<char* const> arguments);

// Denormal results and operands become zero, in this thread, from here on.
void flushDenormals();

// One length step of what was read, by its route: model file and report under the names FOUTM and
// FOUTR.
void solveStep();

} // namespace lcp

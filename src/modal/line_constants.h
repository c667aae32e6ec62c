// Y, Z and their normalised product at one frequency, by the routine of the kind of system.
#pragma once

namespace lcp {

// Fills YMAT, ZMAT, PMAT of SOLVEDATA.first at the frequency f, Hz, and clears ISTATUS. Results
// that are no numbers end the run with a message, exit status 1.
void constantsAt(double f);

// Message for a part of the program that this build does not have; ends the run, exit status 1.
[[noreturn]] void unavailable(const char* what);

} // namespace lcp

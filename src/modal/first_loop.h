// First frequency loop: line constants, eigenvalues and vectors at every step of the grid.
#pragma once

namespace lcp {

// True when the line is one ideally transposed circuit, whose modes are known in closed form.
bool isIdeallyTransposed();

// Runs all steps of the grid and fills YSTORE, ZSTORE, MEIG and MTI.
void firstFrequencyLoop();

} // namespace lcp

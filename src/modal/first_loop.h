// First frequency loop: line constants, eigenvalues and vectors at every step of the grid.
#pragma once

#include "store/solvedata.h"

namespace lcp {

// True when the line is one ideally transposed circuit, whose modes are known in closed form.
bool isIdeallyTransposed();

// Fills TI and TIINV with the modes of an ideally transposed circuit: unit columns, the first one
// the ground mode.
void idealTransformation();

// Eigenvalues of its matrix P, which has one diagonal and one off-diagonal value.
void idealEigenvalues(ModeComplex& L, const LineMatrix& P, int n);

// Runs all steps of the grid and fills YSTORE, ZSTORE, MEIG and MTI.
void firstFrequencyLoop();

// What any first loop starts with: before its first step, and with each step k, whose frequency it
// stores and which may be the one that the constant transform step starts from.
void beginFirstLoop();
void beginStep(int k);

} // namespace lcp

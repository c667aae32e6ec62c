// First frequency loop: line constants, eigenvalues and eigenvectors at every step of the grid.
#pragma once

#include "store/solvedata.h"

namespace lcp {

// True if the line is one ideally transposed circuit, whose modes are known in closed form.
bool isIdeallyTransposed();

// Fills TI and TIINV with the modes of an ideally transposed circuit: unit columns, the first one
// the ground mode.
void idealTransformation();

// Eigenvalues of the matrix P of such a circuit, which has equal diagonal and equal off-diagonal
// elements.
void idealEigenvalues(ModeComplex& L, const LineMatrix& P, int n);

// Runs all steps of the grid and fills YSTORE, ZSTORE, MEIG and MTI.
void firstFrequencyLoop();

// Common to all first loops. beginFirstLoop is called before the first step. beginStep is called at
// each step k: it stores the frequency and records the start of the constant-transformation step.
void beginFirstLoop();
void beginStep(int k);

} // namespace lcp

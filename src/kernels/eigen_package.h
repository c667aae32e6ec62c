// All eigenvalues of a dense complex matrix with left and right eigenvectors.
#pragma once

#include "base/matrix.h"
#include "store/solvedata.h"

namespace lcp {

// Eigenvalue L(k), left vector in row k of Y and right vector in column k of X of the matrix A of
// order n, for k = 1..n in the order found: by falling distance from a shift between the axes, as
// far as the moduli are distinct. Y X = I, and the element of each right vector in the row where
// the pair was found is 1. A is overwritten.
//
// An order above 49 ends the run with a message and exit status 12. When a vector has not settled
// after 100 squarings the pairs from there on keep what Y and X held, and L what it held plus the
// shift.
void VALVC(ModeComplex& L, CView Y, CView X, CView A, int n);

// False when a vector of the last decomposition did not settle.
bool settledVectors();

} // namespace lcp

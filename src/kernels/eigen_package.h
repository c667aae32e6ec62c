// Eigenvalues of a dense complex matrix with left and right eigenvectors.
#pragma once

#include "base/matrix.h"
#include "store/solvedata.h"

namespace lcp {

// Computes eigenvalue L(k), left eigenvector in row k of Y and right eigenvector in column k of X
// of the matrix A of order n, for k = 1..n in the order found: by decreasing distance from a shift
// off both axes, where the moduli are distinct. Y X = I, and each right eigenvector has 1 in the
// row where the pair was found. A is overwritten.
//
// An order above 49 ends the run with a message and exit status 12. If a vector has not settled
// after 100 squarings, the pairs from there on keep their old Y and X, and their old L plus the
// shift.
void VALVC(ModeComplex& L, CView Y, CView X, CView A, int n);

// Returns false if a vector of the last decomposition did not settle.
bool settledVectors();

} // namespace lcp

// Reduction of a symmetric matrix over all physical conductors to the equivalent ones, and the
// inverse of what is left.
#pragma once

#include "base/matrix.h"

namespace lcp {

// Folds the sub-conductors of bundles into their main conductors and eliminates sub-conductors and
// ground wires, by the roles CMAP of the conductor table. M is symmetric, n by n, overwritten: the
// corner of the kept conductors, which come first, is the result; what lies beyond is of no use
// afterwards. With fewer of them in front than NC, as in a table that was not ordered, the rows and
// columns up to NC are those of the elimination steps: of an eliminated q the row before its step,
// the column over M(q, q). M is not symmetric then.
void BUNDRED(CView M, int n);

// Kept conductors in front of the n conductors of the table.
int leadingKept(int n);

// The two steps of it. With the voltage of unknown k written as its difference from that of r, row
// and column k become row k - row r and column k - column r:
void foldMember(CView M, int n, int k, int r);

// Eliminates the unknowns behind the first kept ones, from the last on, from the symmetric n by n
// matrix M; only its lower triangle is read.
void CBKRON(CView M, int kept, int n);

// In-place inverse of the symmetric n by n corner of M. No pivot search, no check for singularity:
// for matrices of potential coefficients, which are positive definite.
void SYMINV(CView M, int n);

} // namespace lcp

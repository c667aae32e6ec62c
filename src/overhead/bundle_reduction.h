// Reduces a symmetric matrix over all physical conductors to the equivalent ones, and inverts the
// result.
#pragma once

#include "base/matrix.h"

namespace lcp {

// Folds the sub-conductors of bundles into their main conductors and eliminates sub-conductors and
// ground wires, according to the roles CMAP of the conductor table. M is symmetric, n by n, and is
// overwritten: its leading corner, over the kept conductors, is the result; the rest is undefined.
// If fewer than NC kept conductors come first, as in an unordered table, the rows and columns up to
// NC are left over from the elimination: for an eliminated q, the row before its step and the
// column divided by M(q, q). M is then not symmetric.
void BUNDRED(CView M, int n);

// Number of kept conductors at the head of the n entries of the table.
int leadingKept(int n);

// First step of the reduction: with the voltage of unknown k written as its difference from that of
// r, row and column k become row k - row r and column k - column r.
void foldMember(CView M, int n, int k, int r);

// Second step: eliminates the unknowns after the first `kept`, starting from the last, from the
// symmetric n by n matrix M. Only its lower triangle is read.
void CBKRON(CView M, int kept, int n);

// Inverts the symmetric n by n corner of M in place, without pivoting and without a check for
// singularity: for matrices of potential coefficients, which are positive definite.
void SYMINV(CView M, int n);

} // namespace lcp

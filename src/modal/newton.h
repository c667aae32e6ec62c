// Follows modes over frequency by Newton-Raphson, and matches a decomposition to an earlier one.
#pragma once

#include "base/matrix.h"
#include "store/solvedata.h"

namespace lcp {

constexpr int MAXNEWTON = 100; // Newton updates after which a mode is given up

// Computes eigenvalues EIG and eigenvectors TI (columns) of A of order n. Each mode k is followed
// independently from the guess LGUESS(k), in scaled units, and column k of XGUESS, with element
// PIVOT(k) of its vector fixed at 1. A is divided by its scale s, the mean modulus of its diagonal;
// EIG belongs to the unscaled A. TI must not be XGUESS. A mode whose guess already has a residual
// of at most 1e-8 leaves EIG(k) and column k of TI unchanged.
//
// Sets NRITER(k) of the solve store to the number of updates of mode k, at least 1, and LSTEP(k) to
// its last scaled eigenvalue. Returns false if a mode did not converge, whose NRITER(k) is then
// 101; the others are solved nevertheless.
bool NREIG(ModeComplex& EIG, CView TI, const ModeComplex& LGUESS, CConstView XGUESS, CView A,
           double& s, const ModeInts& PIVOT, int n);

// Reorders the modes of a decomposition (TI, its inverse TIINV, EIG) so that column k of TI is
// nearest to column k of V, in the order of modes. Vectors of opposite sign are negated.
void MTRACK(CView TI, CView TIINV, CConstView V, ModeComplex& EIG, int n);

} // namespace lcp

// Following modes over frequency: Newton-Raphson on the eigenvalue equation from the solution of
// the last frequency, and matching a fresh decomposition to an earlier one.
#pragma once

#include "base/matrix.h"
#include "store/solvedata.h"

namespace lcp {

constexpr int MAXNEWTON = 100; // Newton updates of a mode before it is given up

// Eigenvalues EIG and vectors TI (columns) of A of order n, each mode k followed on its own from
// the guess LGUESS(k), in units of the scale, and column k of XGUESS, with element PIVOT(k) of its
// vector held at 1. A is divided by its scale s, the mean modulus of its diagonal; EIG is that of
// the undivided A. TI must not be XGUESS. A mode that the guess solves to 1e-8 keeps what EIG(k)
// and column k of TI held.
//
// Sets NRITER(k) of the solve store to the updates spent on mode k, 1 when none was needed, and
// LSTEP(k) to its latest scaled eigenvalue. Returns false when a mode, with NRITER(k) 101, did not
// converge; the others are solved all the same.
bool NREIG(ModeComplex& EIG, CView TI, const ModeComplex& LGUESS, CConstView XGUESS, CView A,
           double& s, const ModeInts& PIVOT, int n);

// Renumbers the modes of a decomposition (TI, its inverse TIINV, EIG) so that column k of TI is
// near column k of V, in mode order; vectors with the opposite sign are turned.
void MTRACK(CView TI, CView TIINV, CConstView V, ModeComplex& EIG, int n);

} // namespace lcp

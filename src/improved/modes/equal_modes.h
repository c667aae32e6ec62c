// Bases of the invariant subspaces that equal modes span.
#pragma once

#include "store/solvedata.h"

namespace lcp {

// Modes of which the eigenvalues cannot be told apart.
struct ModeGroups {
  ModeInts of;   // number of the group of mode i, that of its first mode
  ModeInts size; // modes of the group with that number
};

// A basis of a subspace: m columns of n elements.
struct Basis {
  int n = 0;
  int m = 0;
  LineMatrix V;
};

// Groups of the eigenvalues L of order n. Two belong together when they differ by less than 1e-9 of
// their own, or by less than rounding times KAPPA, the condition number of the worse of the two;
// groups that share one are one.
void findGroups(ModeGroups& G, const ModeComplex& L, const ModeReals& KAPPA, int n);

// Turns the columns of B among themselves so that x_a^T Z x_b = 0, with the least change of the
// columns (symmetric orthogonalisation). A basis with a column x^T Z x = 0 stays as it is.
void turnToRightAngles(Basis& B, CConstView Z);

// Replaces the columns of B by a basis that depends on the subspace alone: x_a^T Z x_b = 0 and
// x_a^T x_b = 0, by falling |x^T Z x / x^T x|; columns with equal quotients are the projections of
// unit vectors.
void standardBasis(Basis& B, CConstView Z);

} // namespace lcp

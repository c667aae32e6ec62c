// Bases of the invariant subspaces spanned by equal modes.
#pragma once

#include "store/solvedata.h"

namespace lcp {

// Groups of modes whose eigenvalues cannot be distinguished.
struct ModeGroups {
  ModeInts of;   // group of mode i, numbered by its first mode
  ModeInts size; // number of modes in the group
};

// A basis of a subspace: m columns of n elements.
struct Basis {
  int n = 0;
  int m = 0;
  LineMatrix V;
};

// Groups the eigenvalues L of order n. Two belong together if they differ by less than 1e-9
// relatively, or by less than rounding times KAPPA, the larger condition number of the two; groups
// with a common member are merged.
void findGroups(ModeGroups& G, const ModeComplex& L, const ModeReals& KAPPA, int n);

// Transforms the columns of B so that x_a^T Z x_b = 0, with the least change of the columns
// (symmetric orthogonalisation). A basis with a column of x^T Z x = 0 is left unchanged.
void turnToRightAngles(Basis& B, CConstView Z);

// Replaces B by a basis that depends only on the subspace: x_a^T Z x_b = 0 and x_a^T x_b = 0,
// ordered by decreasing |x^T Z x / x^T x|; columns with equal quotients are projections of unit
// vectors.
void standardBasis(Basis& B, CConstView Z);

} // namespace lcp

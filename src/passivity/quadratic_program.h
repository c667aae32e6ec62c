// Strictly convex quadratic programs with inequality constraints.
#pragma once

#include "base/matrix.h"

namespace lcp {

// x = the minimum of 1/2 x^T G x + g^T x subject to A x <= b, by the dual active-set method: from
// the unconstrained minimum the constraint that is violated most is added in turn, and active ones
// that stand in its way are dropped. G is N by N, symmetric, positive definite (its upper triangle
// is read), A is M by N, g and x are of length N, b of length M.
//
// True: no constraint is violated by more than 1e-15, or 500 passes were made and x is what was
// reached. False, and x is of no use: no x meets all constraints, or an element of x or of what is
// given is not finite. Work arrays are allocated at entry.
[[nodiscard]] bool QPDUAL(int N, int M, RConstView G, const double* g, RConstView A,
                          const double* b, double* x);

} // namespace lcp

// Strictly convex quadratic programs with inequality constraints.
#pragma once

#include "base/matrix.h"

namespace lcp {

// x = minimum of 1/2 x^T G x + g^T x subject to A x <= b, by the dual active-set method: starting
// from the unconstrained minimum, the most violated constraint is added in turn, and active
// constraints that block it are dropped. G is N by N, symmetric and positive definite (its upper
// triangle is read), A is M by N, g and x have length N, b has length M.
//
// Returns true if no constraint is violated by more than 1e-15, or if 500 passes were made, with x
// as reached then. Returns false, with x undefined, if no x meets all constraints, or if an element
// of x or of an input is not finite. Work arrays are allocated at entry.
[[nodiscard]] bool QPDUAL(int N, int M, RConstView G, const double* g, RConstView A,
                          const double* b, double* x);

} // namespace lcp

// Inversion and solution of dense complex systems up to order MAXINV, in fixed work stores.
#pragma once

#include "base/matrix.h"

namespace lcp {

// R = inverse of A; R may be A. A pivot of modulus 1e-50 or less ends the run with a message and
// exit status 1. Returns true when the result is no inverse: |A R| summed over all elements
// exceeds n by 0.1 or more, or is not a number.
bool INVCJD(CView R, CConstView A, int n);

// x = inverse of A times b, by the same elimination and check without a message: for systems of
// which singular ones are an expected event. Returns true, and x is of no use, when a pivot has a
// modulus of 1e-20 or less or the check of the inverse fails. x must not be b.
bool SOLVEJD(Complex* x, CConstView A, const Complex* b, int n);

} // namespace lcp

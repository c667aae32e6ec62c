// Inverse and solution of dense complex systems up to order MAXINV, in fixed work arrays.
#pragma once

#include "base/matrix.h"

namespace lcp {

// R = inverse of A (order n); R may be A. A pivot of modulus 1e-50 or less ends the run with a
// message and exit status 1.
void INVCJD(CView R, CConstView A, int n);

// The same with a check. Returns true if R is an inverse: |A R| summed over all elements exceeds n
// by less than 0.1.
[[nodiscard]] bool INVCHECKED(CView R, CConstView A, int n);

// x = inverse of A times b, by the same elimination and check, but without a message: for systems
// that may well be singular. Returns false, with x undefined, if a pivot has a modulus of 1e-20 or
// less or the check fails. x must not be b.
[[nodiscard]] bool SOLVEJD(Complex* x, CConstView A, const Complex* b, int n);

} // namespace lcp

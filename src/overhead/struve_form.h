// Carson's integral in closed form, by Struve and Bessel functions.
#pragma once

#include "base/matrix.h"

namespace lcp {

// One sign of x of Carson's integral without permeability,
//
//   g(w) = integral over v from 0 to infinity of exp(-w v) (sqrt(1 + v^2) - v)
//        = pi / (2 w) (H1(w) - Y1(w)) - 1 / w^2,
//
// w = m (H +- j x); E = g(m (H + j x)) + g(m (H - j x)). By power series at small |w| and by
// asymptotic series at large |w|, to 2e-14 of its magnitude. In between, and where |w| is large but
// exp(j w) is not yet spent, there is no form of it, and the second value is false.
struct StruveForm {
  Complex value;
  bool taken;
};
StruveForm STRUVE(Complex w);

} // namespace lcp

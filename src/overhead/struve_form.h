// Carson's integral in closed form, by Struve and Bessel functions.
#pragma once

#include "base/matrix.h"

namespace lcp {

// One sign of x of Carson's integral without permeability,
//
//   g(w) = integral over v from 0 to infinity of exp(-w v) (sqrt(1 + v^2) - v)
//        = pi / (2 w) (H1(w) - Y1(w)) - 1 / w^2,
//
// w = m (H +- j x); E = g(m (H + j x)) + g(m (H - j x)). Computed by power series for small |w| and
// by asymptotic series for large |w|, to 2e-14 of its magnitude. In between, and for large |w|
// where exp(j w) still counts, taken is false.
struct StruveForm {
  Complex value;
  bool taken;
};
StruveForm STRUVE(Complex w);

} // namespace lcp

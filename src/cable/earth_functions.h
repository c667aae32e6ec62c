// Functions of the closed forms for the earth return of buried cables.
#pragma once

#include "base/matrix.h"

namespace lcp {

// Principal value of log(1 + z). For |z| up to 0.1 six terms of the series are used: relative error
// 1.6e-7.
Complex LOG1PS(Complex z);

// Modified Bessel function K0(z), Re z not negative; 1e300 for z = 0. On the 45 degree ray of a
// constant soil the relative error is at most 5e-6; where Im z is several times Re z and |z| is
// above 9 it is a few percent.
Complex KZERO(Complex z);

} // namespace lcp

// Earth return of buried cables: the functions of its closed forms.
#pragma once

#include "base/matrix.h"

namespace lcp {

// Principal log(1 + z), short: six terms for |z| up to 0.1, exact there to 1.6e-7 of the value.
Complex LOG1PS(Complex z);

// Modified Bessel function K0(z), Re z not negative; 1e300 for z = 0. On the ray of a constant
// soil, at 45 degrees, it is exact to 5e-6 of the value; where Im z is several times Re z and |z|
// above 9 it is a few percent off.
Complex KZERO(Complex z);

} // namespace lcp

// Hyperbolic functions of a complex argument, and the magnitudes and angles that go with them.
#pragma once

#include "base/matrix.h"

#include <cmath>

namespace lcp {

// Hyperbolic sine. A real part of 30 or more counts as 30, so that it stays finite.
Complex CSINH(Complex z);

// Hyperbolic tangent and cotangent; no argument overflows. The cotangent of a |z| of 1e-20 or less
// is 1e20.
Complex CTANH(Complex z);
Complex CCOTH(Complex z);

// |Re z| + |Im z|.
inline double L1MAG(Complex z) { return std::fabs(z.real()) + std::fabs(z.imag()); }

// Angle of x + j y in radians, in (-pi/2, 3 pi/2]: it jumps at the negative imaginary axis. 0 when
// both parts are 1e-25 or less in magnitude.
double PHASE2(double y, double x);

} // namespace lcp

// Hyperbolic functions of a complex argument, and related magnitudes and angles.
#pragma once

#include "base/matrix.h"

#include <cmath>

namespace lcp {

// Hyperbolic sine. A real part above 30 counts as 30, so that the result stays finite.
Complex CSINH(Complex z);

// Hyperbolic tangent and cotangent; no argument overflows. The cotangent of |z| <= 1e-20 is 1e20.
Complex CTANH(Complex z);
Complex CCOTH(Complex z);

// |Re z| + |Im z|.
inline double L1MAG(Complex z) { return std::fabs(z.real()) + std::fabs(z.imag()); }

// Angle of x + j y in radians, in (-pi/2, 3 pi/2]: the jump lies at the negative imaginary axis. 0
// if both parts are at most 1e-25 in magnitude.
double PHASE2(double y, double x);

} // namespace lcp

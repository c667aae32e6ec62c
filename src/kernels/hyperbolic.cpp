//   sinh z = (e^z - e^-z) / 2
//   tanh z = (1 - e^-2z) / (1 + e^-2z)        coth z = 1 / tanh z
//
// With e^-2z for Re z > 1 and e^2z for Re z < -1 the power never exceeds 1; in between the
// symmetric form is used. Below |z| = 1e-5, coth z = 1/z + z/3 - ... equals 1/z to rounding.
#include "kernels/hyperbolic.h"

#include "base/constants.h"

#include <algorithm>
#include <complex>

namespace lcp {

namespace {

constexpr double CAP = 30.0;        // largest real part used in the hyperbolic sine
constexpr double ONESIDED = 1.0;    // real part beyond which a one-sided form is used
constexpr double RECIPROCAL = 1e-5; // up to this |z| coth z = 1 / z
constexpr double NOTHING = 1e-20;   // up to this |z| the hyperbolic cotangent is limited
constexpr double POLE = 1e20;       // ... to this value

constexpr double NOANGLE = 1e-25; // the angle of parts up to this is 0
constexpr double QUARTERTURN = 1.5707963267948966;
constexpr double THREEQUARTERS = 4.71238898038469;

} // namespace

Complex CSINH(Complex z) {
  const Complex u(std::min(z.real(), CAP), z.imag());
  return (std::exp(u) - std::exp(-u)) / 2.0;
}

Complex CTANH(Complex z) {
  if (z.real() > ONESIDED) {
    const Complex E = std::exp(-2.0 * z);
    return (1.0 - E) / (1.0 + E);
  }
  if (z.real() < -ONESIDED) {
    const Complex E = std::exp(2.0 * z);
    return (E - 1.0) / (E + 1.0);
  }
  const Complex p = std::exp(z), q = std::exp(-z);
  return (p - q) / (p + q);
}

Complex CCOTH(Complex z) {
  if (std::abs(z) <= NOTHING) return POLE;
  if (std::abs(z) <= RECIPROCAL) return 1.0 / z;
  if (z.real() > ONESIDED) {
    const Complex E = std::exp(-2.0 * z);
    return (1.0 + E) / (1.0 - E);
  }
  if (z.real() < -ONESIDED) {
    const Complex E = std::exp(2.0 * z);
    return (E + 1.0) / (E - 1.0);
  }
  const Complex p = std::exp(z), q = std::exp(-z);
  return (p + q) / (p - q);
}

double PHASE2(double y, double x) {
  const bool angled = std::fabs(x) > NOANGLE || std::fabs(y) > NOANGLE;
  double a = angled ? std::atan2(y, x) : 0.0;
  if (a <= -QUARTERTURN) a += TWOPI;
  if (a > THREEQUARTERS) a -= TWOPI;
  return a;
}

} // namespace lcp

// Three forms of f(z) = exp(z) E1(z), |arg z| <= pi:
//
//   asymptotic  f = 1/z (1 - 1!/z + 2!/z^2 - ...), for large |z|
//   fraction    f = 1 / (z + 1 - 1 / (z + 3 - 4 / (z + 5 - 9 / (...)))), from the inside out;
//               the error after n steps is exp(-4 sqrt(n |z|) cos(arg z / 2))
//   series      E1 = -C - log z - sum_k (-z)^k / (k k!), where the fraction would be long: for
//               small |z|, and near the negative axis, where its terms hardly cancel
//
// Across the cut, E1(z exp(2 pi j)) = E1(z) - 2 pi j.
#include "kernels/exponential_integral.h"

#include "base/constants.h"

#include <cmath>

namespace lcp {

namespace {

constexpr double EULER = 0.5772156649015329;
constexpr double LARGE = 38.0;
constexpr double LONGEST = 120.0; // steps of the fraction

Complex largeArgument(Complex z) {
  const Complex q = -1.0 / z;
  Complex term = 1.0, sum = 1.0;
  for (int n = 1; n < LARGE; ++n) {
    term *= static_cast<double>(n) * q;
    sum += term;
    if (std::norm(term) < 1e-36) break;
  }
  return sum / z;
}

Complex fraction(Complex z, int steps) {
  Complex tail = 0.0;
  for (int n = steps; n >= 1; --n) tail = static_cast<double>(n) * n / (z + (2.0 * n + 1.0) - tail);
  return 1.0 / (z + 1.0 - tail);
}

Complex series(Complex z, double r, double angle) {
  Complex term = 1.0, sum = 0.0;
  for (int k = 1; k < 200; ++k) {
    term *= -z / static_cast<double>(k);
    sum += term / static_cast<double>(k);
    if (k > r && std::norm(term) < 1e-36 * std::norm(sum)) break;
  }
  return std::exp(z) * (Complex(-EULER - std::log(r), -angle) - sum);
}

} // namespace

Complex EXPE1(double r, double angle) {
  const double turned = angle > PI ? -1.0 : angle < -PI ? 1.0 : 0.0;
  const double principal = angle + turned * TWOPI;
  const Complex z = std::polar(r, principal);
  const double half = std::cos(0.5 * principal);
  const double length = 90.0 / (r * half * half);
  Complex f;
  if (r >= LARGE) {
    f = largeArgument(z);
  } else if (length <= LONGEST) {
    f = fraction(z, static_cast<int>(length) + 5);
  } else {
    f = series(z, r, principal);
  }
  if (turned != 0.0) f += Complex(0.0, turned * TWOPI) * std::exp(z);
  return f;
}

} // namespace lcp

// Magnitude, principal root, exponential and quotient of complex numbers in real arithmetic: the
// digits of the C library's and the compiler's routines, without their cases for numbers near the
// ends of the range, and so that the processor can do some of them side by side.
#pragma once

#include "base/matrix.h"

#include <algorithm>
#include <cmath>

namespace lcp {

// Its square, and products of it with others of the kind, neither overflow nor underflow.
inline bool isPlain(double x) { return x > 1e-130 && x < 1e130; }

// Of x + j y, both plain: the root of the squares, corrected by what its own square is off, which
// the differences of x and y show without error.
inline double plainMagnitude(double x, double y) {
  constexpr double NOTHING = 0x1p-54;
  const double a = std::max(x, y);
  const double b = std::min(x, y);
  const double h = std::sqrt(a * a + b * b);
  const bool near = h <= 2.0 * b;
  const double f = h - (near ? b : a);
  const double t1 = near ? a * (2.0 * f - a) : 2.0 * f * (a - 2.0 * b);
  const double t2 = near ? (f - 2.0 * (a - b)) * f : (4.0 * f - b) * b + f * f;
  return b <= a * NOTHING ? a + b : h - (t1 + t2) / (2.0 * h);
}

// Of plain parts. The larger part first, which does not cancel; the other follows from their
// product.
inline Complex plainRoot(Complex z) {
  const double x = std::fabs(z.real());
  const double y = std::fabs(z.imag());
  const double u = std::sqrt(0.5 * (plainMagnitude(x, y) + x));
  const double v = 0.5 * (y / u);
  const bool right = z.real() > 0.0;
  return {right ? u : v, std::copysign(right ? v : u, z.imag())};
}

// Of any number; one that is not plain goes to the library.
inline Complex ROOT(Complex z) {
  const bool plain = isPlain(std::fabs(z.real())) && isPlain(std::fabs(z.imag()));
  return plain ? plainRoot(z) : std::sqrt(z);
}

// exp(z).
inline Complex EXPONENTIAL(Complex z) {
  constexpr double PLAINEXPONENT = 700.0;
  if (!(std::fabs(z.real()) < PLAINEXPONENT && std::isfinite(z.imag()))) return std::exp(z);
  const double e = std::exp(z.real());
  return {e * std::cos(z.imag()), e * std::sin(z.imag())};
}

// a / b by way of the smaller part of b over the larger one.
inline Complex quotient(Complex a, Complex b) {
  const bool steep = std::fabs(b.real()) < std::fabs(b.imag());
  const double small = steep ? b.real() : b.imag(), large = steep ? b.imag() : b.real();
  const double ratio = small / large, divisor = small * ratio + large;
  const double re = steep ? a.real() * ratio + a.imag() : a.imag() * ratio + a.real();
  const double im = steep ? a.imag() * ratio - a.real() : a.imag() - a.real() * ratio;
  return {re / divisor, im / divisor};
}

} // namespace lcp

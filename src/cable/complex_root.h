// Magnitude and principal root of a complex number in real arithmetic: the digits of the C
// library's routines, without their cases for numbers near the ends of the range.
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

// Of any number; one that is not plain goes to the library. The larger part first, which does not
// cancel; the other follows from their product.
inline Complex ROOT(Complex z) {
  const double x = std::fabs(z.real());
  const double y = std::fabs(z.imag());
  if (!isPlain(x) || !isPlain(y)) return std::sqrt(z);
  const double u = std::sqrt(0.5 * (plainMagnitude(x, y) + x));
  const double v = 0.5 * (y / u);
  return z.real() > 0.0 ? Complex(u, std::copysign(v, z.imag()))
                        : Complex(v, std::copysign(u, z.imag()));
}

} // namespace lcp

// Magnitude, root and exponential of complex numbers in real arithmetic, for scalars and lanes.
//
// The results have the digits of the C library's functions; only the treatment of numbers near the
// ends of the range is left out.
#pragma once

#include "kernels/lane_vectors.h"

#include <algorithm>
#include <cmath>

namespace lcp {

// Whether the square of x, and products with other such numbers, neither overflow nor underflow.
inline bool isPlain(double x) { return x > 1e-130 && x < 1e130; }

// Replaces x by its square root.
inline void takeRoot(double& x) { x = std::sqrt(x); }
inline void takeRoot(Lanes& x) {
  for (int c = 0; c < LANES; ++c) x[c] = std::sqrt(x[c]);
}

// |x + j y| for plain x and y: the root of the sum of squares, corrected by the error of its own
// square, which follows exactly from differences of x and y.
template <class T> void setPlainMagnitude(T& m, const T& x, const T& y) {
  constexpr double NOTHING = 0x1p-54;
  const T a = x < y ? y : x;
  const T b = x < y ? x : y;
  T h = a * a + b * b;
  takeRoot(h);
  const auto near = h <= 2.0 * b;
  const T f = h - (near ? b : a);
  const T t1 = near ? a * (2.0 * f - a) : 2.0 * f * (a - 2.0 * b);
  const T t2 = near ? (f - 2.0 * (a - b)) * f : (4.0 * f - b) * b + f * f;
  m = b <= a * NOTHING ? a + b : h - (t1 + t2) / (2.0 * h);
}

inline double plainMagnitude(double x, double y) {
  double m = 0;
  setPlainMagnitude(m, x, y);
  return m;
}

// Replaces re + j im, both plain except for their signs, by its principal root. The larger part is
// computed first, without cancellation; the other follows from their product.
template <class T> void takePlainRoot(T& re, T& im) {
  const T x = re < 0.0 ? -re : re;
  const T y = im < 0.0 ? -im : im;
  T u;
  setPlainMagnitude(u, x, y);
  u = 0.5 * (u + x);
  takeRoot(u);
  const T v = 0.5 * (y / u);
  const T second = re > 0.0 ? v : u;
  re = re > 0.0 ? u : v;
  im = im < 0.0 ? -second : second;
}

// Principal root of any number; numbers that are not plain go to the library.
inline Complex ROOT(Complex z) {
  double re = z.real(), im = z.imag();
  if (!isPlain(std::fabs(re)) || !isPlain(std::fabs(im))) return std::sqrt(z);
  takePlainRoot(re, im);
  return {re, im};
}

inline void takeRoot(ComplexLanes& z) {
  bool plain = true;
  for (int c = 0; c < LANES; ++c)
    plain = plain && isPlain(std::fabs(z.re[c])) && isPlain(std::fabs(z.im[c]));
  if (plain) {
    takePlainRoot(z.re, z.im);
  } else {
    for (int c = 0; c < LANES; ++c) z.set(c, ROOT(z.lane(c)));
  }
}

// z becomes exp(z). Overflow and non-finite arguments go to the library.
inline void takeExponential(ComplexLanes& z) {
  constexpr double PLAINEXPONENT = 700.0;
  bool plain = true;
  for (int c = 0; c < LANES; ++c)
    plain = plain && std::fabs(z.re[c]) < PLAINEXPONENT && std::isfinite(z.im[c]);
  if (!plain) {
    for (int c = 0; c < LANES; ++c) z.set(c, std::exp(z.lane(c)));
    return;
  }
  for (int c = 0; c < LANES; ++c) {
    const double e = std::exp(z.re[c]);
    z.set(c, {e * std::cos(z.im[c]), e * std::sin(z.im[c])});
  }
}

} // namespace lcp

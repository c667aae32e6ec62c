// Comparisons of numbers that may be infinite or NaN.
#pragma once

#include <algorithm>
#include <cmath>
#include <complex>

namespace lcp {

// The larger of two; NaN if one of them is NaN.
inline double larger(double a, double b) { return b > a || std::isnan(b) ? b : a; }

// Squares between these limits keep the precision of their roots.
constexpr double LEASTSQUARE = 1e-280;
constexpr double MOSTSQUARE = 1e280;

// A bound for squared moduli: a complex number whose squared modulus is below it has a smaller
// modulus than m, whatever the rounding. Returns 0 where squares overflow or lose precision.
inline double squareBelow(double m) {
  const double square = m * m;
  return square > LEASTSQUARE && square < MOSTSQUARE ? (1 - 1e-10) * square : 0.0;
}

// Largest modulus of many complex numbers; NaN if one of them is NaN. Most of them need no square
// root.
class LargestModulus {
public:
  void take(std::complex<double> z) {
    if (std::norm(z) < below) return;
    largest = larger(largest, std::abs(z));
    below = squareBelow(largest);
  }
  operator double() const { return largest; } // NOLINT(*-explicit-*)

private:
  double largest = 0;
  double below = 0;
};

inline bool allFinite(const double* x, int n) {
  return std::all_of(x, x + n, [](double v) { return std::isfinite(v); });
}

inline bool anyNaN(const double* x, int n) {
  return std::any_of(x, x + n, [](double v) { return std::isnan(v); });
}

} // namespace lcp

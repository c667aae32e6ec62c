// The integrals of the earth return by quadrature.
#pragma once

#include "base/matrix.h"

#include <cmath>

namespace lcp::test {

// exp(down m) times twice the integral of exp(-up u - down s) cos(x u) / (N u + s) over all u > 0,
// s = sqrt(u^2 + m^2): Gauss-Legendre with seven points on eight panels or more of intervals that
// double, to where the integrand is below exp(-45).
inline Complex earthIntegral(double up, double down, double x, Complex m, Complex N = 1.0) {
  constexpr double nodes[] = {0, 0.949107912342758524526, 0.741531185599394439864,
                              0.405845151377397166907};
  constexpr double weights[] = {0.417959183673469387755, 0.129484966168869693271,
                                0.279705391489276667901, 0.381830050505118944950};
  Complex sum, fall;
  const auto f = [&](double u) {
    const Complex s = std::sqrt(u * u + m * m);
    fall = up * u + down * u * u / (s + m); // s - m without cancellation
    return 2.0 * std::exp(-fall) / (N * u + s) * std::cos(x * u);
  };
  double lo = 0, width = std::min(1e-3 * std::abs(m), 1.0);
  for (int k = 0; fall.real() < 45; ++k, lo += width) {
    if (k > 8 && x * lo < 8) width = lo / 8;
    for (int i = 0; i < 4; ++i) {
      const double c = lo + width / 2, h = width / 2 * nodes[i];
      sum += width / 2 * weights[i] * (i == 0 ? f(c) : f(c - h) + f(c + h));
    }
  }
  return sum;
}

} // namespace lcp::test

// The modified Bessel functions by ball arithmetic, and what conductors and the earth are of them.
#pragma once

#include "base/constants.h"
#include "base/matrix.h"

#include <acb_hypgeom.h>
#include <limits>

namespace lcp::test {

using BesselRoutine = void (*)(acb_t, const acb_t, const acb_t, slong);

// To full double precision.
inline Complex besselBy(BesselRoutine routine, int n, Complex z) {
  acb_t numbers[3]; // order, argument, value
  for (auto& x : numbers) acb_init(x);
  acb_set_si(numbers[0], n);
  acb_set_d_d(numbers[1], z.real(), z.imag());
  slong bits = 128;
  do {
    bits *= 2;
    routine(numbers[2], numbers[0], numbers[1], bits);
  } while (acb_rel_accuracy_bits(numbers[2]) < 60);
  const Complex value(arf_get_d(arb_midref(acb_realref(numbers[2])), ARF_RND_NEAR),
                      arf_get_d(arb_midref(acb_imagref(numbers[2])), ARF_RND_NEAR));
  for (auto& x : numbers) acb_clear(x);
  flint_cleanup();
  return value;
}

// exp(-z) I_n(z) and exp(z) K_n(z)
inline Complex scaledI(int n, Complex z) { return besselBy(acb_hypgeom_bessel_i_scaled, n, z); }
inline Complex scaledK(int n, Complex z) { return besselBy(acb_hypgeom_bessel_k_scaled, n, z); }

// Impedances of a round conductor at its surfaces and between them, ohm/m; q and r its radii. A
// solid one, q = 0, has an outer surface alone.
struct TubeSurfaces {
  Complex in, out, transfer;
};

inline TubeSurfaces tubeSurfaces(double w, double q, double r, double rho, double mu) {
  const Complex m = std::sqrt(Complex(0, w * MU0 * mu / rho)), z = rho * m / (TWOPI * r);
  const Complex a = m * q, b = m * r, I0 = scaledI(0, b), I1 = scaledI(1, b);
  if (q == 0.0) return {0.0, z * I0 / I1, 0.0};
  const Complex wall = std::exp(a - b), K0 = wall * scaledK(0, b), K1 = wall * scaledK(1, b);
  const Complex i0 = wall * scaledI(0, a), i1 = wall * scaledI(1, a);
  const Complex k0 = scaledK(0, a), k1 = scaledK(1, a), det = I1 * k1 - i1 * K1;
  return {z * r / q * (i0 * K1 + k0 * I1) / det, z * (I0 * k1 + K0 * i1) / det, z * wall / a / det};
}

// exp(down m) times twice the integral of exp(-up u - down s) cos(x u) / (N u + s) over u from 0 to
// the end, s = sqrt(u^2 + m^2): Gauss-Legendre with seven points on eight panels or more of
// intervals that double, to where the integrand is below exp(-45).
inline Complex earthIntegral(double up, double down, double x, Complex m, Complex N = 1.0,
                             double end = std::numeric_limits<double>::infinity()) {
  constexpr double nodes[][2] = {{0, 0.417959183673469387755 / 2}, // counted twice
                                 {0.949107912342758524526, 0.129484966168869693271},
                                 {0.741531185599394439864, 0.279705391489276667901},
                                 {0.405845151377397166907, 0.381830050505118944950}};
  Complex sum, fall;
  const auto f = [&](double u) {
    const Complex s = std::sqrt(u * u + m * m);
    fall = up * u + down * u * u / (s + m); // s - m without cancellation
    return 2.0 * std::exp(-fall) / (N * u + s) * std::cos(x * u);
  };
  double lo = 0, width = std::min(1e-3 * std::abs(m), 1.0);
  for (int k = 0; fall.real() < 45 && lo < end; ++k, lo += width) {
    if (k > 8 && x * lo < 8) width = lo / 8;
    width = std::min(width, end - lo);
    const double c = lo + width / 2;
    for (const auto& [node, weight] : nodes)
      sum += width / 2 * weight * (f(c - width / 2 * node) + f(c + width / 2 * node));
  }
  return sum;
}

} // namespace lcp::test

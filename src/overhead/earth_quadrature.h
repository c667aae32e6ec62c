// Integrals of the earth return along a path on which the integrand decays.
//
//   2 * integral over u from 0 to infinity of exp(-h u - y s) cos(x u) / (s + c u),
//   s = sqrt(u^2 + m^2)
//
// becomes, with u = m sinh(eta) and s = m cosh(eta), the sum over both signs of x of
//
//   integral over eta from 0 to infinity of exp(-P e^eta - Q e^-eta) w(eta)
//   P = m (h + y - j x) / 2,  Q = m (y - h + j x) / 2
//
// There is no root left, so the integrand has no branch point. The same exponent serves conductors
// above ground (y = 0), in it (h = 0), and one of each.
#pragma once

#include "base/matrix.h"

namespace lcp {

// w = (1 + n q) / (a + b e^-eta + c q), q = e^(-2 eta). pole: its poles in the plane of e^eta, 0
// for none.
struct PathWeight {
  double n;
  Complex a, b, c;
  Complex pole[2];
};

constexpr PathWeight WEIGHTK0 = {0.0, 1.0, 0.0, 0.0, {}}; // w = 1
constexpr PathWeight WEIGHTK1 = {1.0, 0.0, 2.0, 0.0, {}}; // w = cosh(eta)
PathWeight weightOfRatio(Complex ratio);                  // w = cosh / (cosh + ratio sinh)
PathWeight weightBeside(Complex k);                       // w = cosh / (cosh + k)

struct PathIntegral {
  Complex value;
  double error; // estimated, absolute
  int panels;
};

// The integral times exp(P + Q), so that it neither over- nor underflows. It needs
// Re(P + Q) >= 0, |P| >= |Q|, P outside the negative real axis, and a weight without poles at
// Re eta >= 0. P and Q may have any size; where the integrand oscillates without decay, each ten
// radians cost a panel.
PathIntegral PATHINTEGRAL(Complex P, Complex Q, const PathWeight& w);

} // namespace lcp

// With s = sqrt(u^2 + m^2), D = sqrt(x^2 + H^2), a = r m and integrals over u from 0 to infinity:
//
//   buried   mu_r / (a K1(a)) [K0(m d) - K0(m D) + 2 * integral of exp(-H s) cos(x u) / (s + mu_r
//   u)]
//   mixed    2 mu_r * integral of exp(-h u - y s) cos(x u) / (s + mu_r u)
//   aerial   Z = log(D / d) + mu_r F(mu_r),  F(c) = 2 * integral of exp(-H u) cos(x u) / (s + c u)
//            P = mu_r A F(mu_r) + B F(n^2 / mu_r),  n^2 = g^2 / g0^2,
//                A = (1 - mu_r^2) / (n^2 - mu_r^2),  B = mu_r (n^2 - 1) / (n^2 - mu_r^2)
//
// g and g0 are the propagation constants of soil and air. Waves along aerial bodies travel as in
// air, so m^2 = g^2 - g0^2 there; for the others m = g. P comes from the integrand of the scalar
// potential,
//
//   2 mu_r (mu_r s + u) / ((mu_r u + s) (mu_r s + n^2 u)),
//
// in partial fractions; for mu_r = 1 it is 2 / (s + n^2 u).
//
// For large c the integrand of F has a pole close to u = 0, which is split off and integrated in
// closed form. With k = 1 / sqrt(1 - 1 / c^2):
//
//   1 / (s + c u) = [c / (u + k m / c) - 1 / (s + k m)] / (c^2 - 1)
//   integral of exp(-z u) / (u + b) = exp(z b) E1(z b),  z = H +- j x
#include "cable/exact_earth.h"

#include "base/constants.h"
#include "kernels/exponential_integral.h"
#include "overhead/earth_quadrature.h"
#include "store/rundata.h"

#include <cmath>

namespace lcp {

namespace {

Estimated operator*(Complex c, const Estimated& e) { return {c * e.value, std::abs(c) * e.error}; }
Estimated operator+(const Estimated& a, const Estimated& b) {
  return {a.value + b.value, a.error + b.error};
}

// exp(z) K0(z) and exp(z) z K1(z).
Estimated expK0(Complex z) {
  const PathIntegral I = PATHINTEGRAL(0.5 * z, 0.5 * z, WEIGHTK0);
  return {I.value, I.error};
}
Estimated expZK1(Complex z) {
  const PathIntegral I = PATHINTEGRAL(0.5 * z, 0.5 * z, WEIGHTK1);
  return z * Estimated{I.value, I.error};
}

// ---- Air

struct Air {
  Complex m;
  Complex n2; // (g / g0)^2
};

Air airOver(Complex p) {
  const Ground& G = RUNDATA.ground;
  const Complex g02 = MU0EPS0 * p * p;
  Complex g2 = G.GMUR * (MU0 / G.GRHO * p + G.GEPSR * g02);
  if (G.GRTYPE) g2 = G.GMUR * MU0 * p * complexAdmittivity(p);
  return {std::sqrt(g2 - g02), g2 / g02};
}

// Integral of exp(-z u) / (u + k m / c), summed over both signs of x.
Complex poleOf(Complex m, Complex c, Complex k, double H, double x) {
  const Complex b = k * m / c;
  const double angle = std::arg(k) + std::arg(m) - std::arg(c); // not reduced to one turn
  const double size = std::abs(b) * std::hypot(H, x), beside = std::atan2(x, H);
  return EXPE1(size, angle + beside) + EXPE1(size, angle - beside);
}

// F(c).
Estimated overAir(Complex m, Complex c, double H, double x) {
  constexpr double LARGE = 2.0;
  constexpr double E1ERROR = 1e-14;
  if (std::abs(c) <= LARGE) return EARTHPATH(m, c, H, 0.0, x);
  const Complex k = 1.0 / std::sqrt(1.0 - 1.0 / (c * c));
  const Complex scale = 1.0 / (c * c - 1.0), pole = poleOf(m, c, k, H, x);
  const Estimated beside = EARTHPATHBESIDE(m, k, H, x);
  return scale * (c * Estimated{pole, E1ERROR * std::abs(pole)} + Complex(-1.0) * beside);
}

} // namespace

BodyPair pairOf(const Body& b) { return {b.r, b.r, 2.0 * b.y, b.r, true}; }

BodyPair pairOf(const Body& i, const Body& j) {
  const double x = std::fabs(i.x - j.x);
  return {x, std::hypot(i.y - j.y, x), i.y + j.y, i.r, false};
}

Estimated EXACTBURIED(Complex p, const BodyPair& g) {
  const double mur = RUNDATA.ground.GMUR;
  const double x = g.self ? 0.0 : g.x;
  const Complex m = exactReciprocalDepth(p), a = g.r * m;
  const Complex md = m * g.d, mD = m * std::hypot(x, g.H);
  const Estimated direct = std::exp(a - md) * expK0(md);
  const Estimated image = -std::exp(a - mD) * expK0(mD);
  const Estimated earth = std::exp(a - m * g.H) * EARTHPATH(m, mur, 0.0, g.H, x);
  return mur / expZK1(a).value * (direct + image + earth);
}

Estimated EXACTMIXED(Complex p, double h, double y, double x) {
  const double mur = RUNDATA.ground.GMUR;
  const Complex m = exactReciprocalDepth(p);
  return mur * std::exp(-m * y) * EARTHPATH(m, mur, h, y, x);
}

ExactAerial EXACTAERIAL(Complex p, const BodyPair& g) {
  const double mur = RUNDATA.ground.GMUR, mur2 = mur * mur;
  const Air air = airOver(p);
  const Estimated F = overAir(air.m, mur, g.H, g.x);
  const double ideal = std::log(std::hypot(g.x, g.H) / g.d);
  const Complex over = 1.0 / (air.n2 - mur2);
  const Complex A = (1.0 - mur2) * over, B = mur == 1.0 ? 1.0 : mur * (air.n2 - 1.0) * over;
  Estimated P = B * overAir(air.m, air.n2 / mur, g.H, g.x);
  if (mur != 1.0) P = P + mur * A * F;
  return {Estimated{ideal, 0.0} + Complex(mur) * F, P};
}

} // namespace lcp

// Earth return of bodies i and j with horizontal distance x, heights or depths y, and radius r of
// i, all in m:
//
//   d = sqrt(x^2 + (y_i - y_j)^2)   D = sqrt(x^2 + H^2)   H = y_i + y_j   a = r m   p = 1 / m
//
// A single body: d = x = r, H = D = 2 y, and theta = 0.
//
// Buried bodies, times GMUR. For thin bodies (Pollaczek), with the modified Bessel functions K0 and
// K1 and J = twice the integral over t of exp(-H sqrt(t^2 + m^2)) cos(x t) / (t + sqrt(t^2 + m^2)):
//
//   integrals   [K0(m d) - K0(m D) + J] / (a K1(a)),  exact, each term without its exponential:
//               [exp(a - m d) KEXPINT(m d) - exp(a - m D) KEXPINT(m D)
//                + exp(a - m D cos theta) CBMUT(m D, theta)] / KEXPONE(a),  tan theta = |x| / H
//   series      K0(m d) + 2 exp(-m H) / (4 + m^2 x^2)
//   closed form exp(a - m d) L1(d) - exp(a - m D) [L1(D) - L2(D)],  K0 as a logarithm:
//               L(s) = log(1 + t / (m s)),  u = sqrt(s / r),  t = u + (1.122872 - u) / q in L1,
//               2 (u + (0.9257 - u) / q) in L2,  q = 1 + sqrt(a)
//
// Aerial bodies:
//
//   closed form log(D / d) + GMUR / 2 log(1 + 4 p (p + H) / D^2),  complex depth
//   integration log(D / d) + SZ, potential term SQ, the integrals of cable/aerial_integral
//               X = |x|; for a single body D = sqrt(r^2 + H^2)
//
// One body aerial, the other buried, times GMUR, with W = sqrt(x^2 + H2^2), H2 = H + 2 p:
//
//   integration log(W / D) - 2/3 (p^3 / W^6) H2 (H2^2 - 3 x^2),  Carson's integral as a series
//   closed form exp(-y_b m) log(W / D),  y_b the depth of the buried body
#include "cable/earth_pairs.h"

#include "cable/aerial_integral.h"
#include "cable/earth_functions.h"
#include "cable/earth_integrals.h"
#include "overhead/earth_return.h"
#include "store/rundata.h"

#include <cmath>

namespace lcp {

namespace {

// The first key also sets the other two formulas.
constexpr EarthFormulaKey AERIALKEY = {"EarthImpedanceFormula", "aerial cables", "0 and 2"};
constexpr EarthFormulaKey BURIEDKEY = {"EarthUImpedanceFormula (or EarthImpedanceFormula, for all)",
                                       "buried cables", "0, 2 and 3"};
constexpr EarthFormulaKey MIXEDKEY = {"EarthMImpedanceFormula (or EarthImpedanceFormula, for all)",
                                      "an aerial and a buried cable", "0 and 2"};

struct Geometry {
  double x; // not negative
  double d;
  double D;
  double H;
};

Geometry geometryOf(const Body& i, const Body& j) {
  const double x = i.x - j.x;
  const double H = i.y + j.y;
  const double beside = i.y - j.y;
  return {std::fabs(x), std::sqrt(beside * beside + x * x), std::sqrt(H * H + x * x), H};
}

Geometry geometryOf(const Body& b) { return {b.r, b.r, 2.0 * b.y, 2.0 * b.y}; }

// ---- Buried

struct Burial {
  double r;
  Geometry g;
  double theta;
};

// Root of a ratio of lengths; 0 for a negative ratio.
double realRoot(double ratio) { return ratio < 0.0 ? 0.0 : std::sqrt(ratio); }

Complex buriedClosed(const Burial& b, Complex m) {
  constexpr double FIRST = 1.122872;
  constexpr double SECOND = 0.9257;
  const Complex a = b.r * m;
  const Complex q = 1.0 + std::sqrt(a);
  const Complex md = m * b.g.d;
  const Complex mD = m * b.g.D;
  const double u1 = realRoot(b.g.d / b.r);
  const double u2 = realRoot(b.g.D / b.r);
  const Complex t1 = u1 + (FIRST - u1) / q;
  const Complex t2 = u2 + (FIRST - u2) / q;
  const Complex t3 = 2.0 * (u2 + (SECOND - u2) / q);
  return std::exp(a - md) * LOG1PS(t1 / md) -
         std::exp(a - mD) * (LOG1PS(t2 / mD) - LOG1PS(t3 / mD));
}

// factor KEXPINT(z); the integral is skipped if the factor has underflowed.
Complex timesKexpint(Complex factor, Complex z) {
  return factor == 0.0 ? factor : factor * KEXPINT(z);
}

Complex kexponeOf(Complex z, LastKexpone& last) {
  if (z != last.argument) last = {z, KEXPONE(z)};
  return last.value;
}

Complex buriedIntegral(const Burial& b, Complex m, LastKexpone& last) {
  const Complex a = b.r * m;
  const Complex md = m * b.g.d;
  const Complex mD = m * b.g.D;
  const Complex fall = std::exp(a - std::cos(b.theta) * mD);
  Complex sum = timesKexpint(std::exp(a - md), md) - timesKexpint(std::exp(a - mD), mD);
  if (fall != 0.0) sum += fall * CBMUT(mD, b.theta);
  return sum / kexponeOf(a, last);
}

Complex buriedSeries(const Burial& b, Complex m) {
  const Complex mx = m * b.g.x;
  return KZERO(m * b.g.d) + 2.0 * std::exp(-m * b.g.H) / (4.0 + mx * mx);
}

Complex buried(int formula, const Burial& b, Complex m, LastKexpone& last) {
  const double GMUR = RUNDATA.ground.GMUR;
  switch (formula) {
  case EARTHCLOSED: return GMUR * buriedClosed(b, m);
  case EARTHINTEGRAL: return GMUR * buriedIntegral(b, m, last);
  case EARTHSERIES: return GMUR * buriedSeries(b, m);
  default: illegalEarthFormula(formula, BURIEDKEY);
  }
}

// ---- Aerial

constexpr double SAMEPLACE = 1e-20; // m

EarthValue aerialIntegral(const Geometry& g, double D, double w) {
  const AerialSums sum = AERIALSUM(g.x, g.H, w);
  return {g.d > SAMEPLACE ? sum.SZ + std::log(D / g.d) : sum.SZ, sum.SQ};
}

EarthValue aerialClosed(const Geometry& g, Complex m) {
  const Complex p = 1.0 / m;
  const double D2 = g.D * g.D;
  const Complex earth = LOG1P(4.0 * p * (p + g.H) / D2);
  return {std::log(g.D / g.d) + RUNDATA.ground.GMUR * 0.5 * earth, 0.0};
}

EarthValue aerial(int formula, const Geometry& g, Complex m, double w) {
  switch (formula) {
  case EARTHCLOSED: return aerialClosed(g, m);
  case EARTHINTEGRAL: return aerialIntegral(g, std::sqrt(g.x * g.x + g.H * g.H), w);
  default: illegalEarthFormula(formula, AERIALKEY);
  }
}

// ---- One aerial, one buried

// Distance W to the image at complex depth.
Complex imageRoot(const Geometry& g, Complex H2) { return std::sqrt(H2 * H2 + g.x * g.x); }

Complex mixedClosed(const Geometry& g, double depth, Complex m) {
  return std::exp(-depth * m) * std::log(imageRoot(g, g.H + 2.0 / m) / g.D);
}

Complex mixedSeries(const Geometry& g, Complex m) {
  const Complex p = 1.0 / m;
  const Complex H2 = g.H + 2.0 * p;
  const Complex W = imageRoot(g, H2);
  const Complex q = p / (W * W);
  return std::log(W / g.D) - 2.0 / 3.0 * (q * q * q) * H2 * (H2 * H2 - 3.0 * g.x * g.x);
}

} // namespace

Complex EBSELF(int formula, const Body& b, Complex m, LastKexpone& last) {
  return buried(formula, {b.r, geometryOf(b), 0.0}, m, last);
}

Complex EBMUT(int formula, const Body& i, const Body& j, Complex m, LastKexpone& last) {
  const Geometry g = geometryOf(i, j);
  return buried(formula, {i.r, g, std::atan2(g.x, g.H)}, m, last);
}

EarthValue EASELF(int formula, const Body& b, Complex m, double w) {
  return aerial(formula, geometryOf(b), m, w);
}

EarthValue EAMUT(int formula, const Body& i, const Body& j, Complex m, double w) {
  return aerial(formula, geometryOf(i, j), m, w);
}

Complex EMIX(int formula, const Body& i, const Body& j, Complex m) {
  const Geometry g = geometryOf(i, j);
  const double GMUR = RUNDATA.ground.GMUR;
  switch (formula) {
  case EARTHCLOSED: return GMUR * mixedClosed(g, i.aerial ? j.y : i.y, m);
  case EARTHINTEGRAL: return GMUR * mixedSeries(g, m);
  default: illegalEarthFormula(formula, MIXEDKEY);
  }
}

} // namespace lcp

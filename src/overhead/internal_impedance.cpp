// Skin effect in a solid, a tubular and a stranded conductor. Each formula uses one hyperbolic
// cotangent fitted to the Bessel function solution, so that it holds at every frequency.
//
//   m   = sqrt(j w mu0 mu_r / rho)   reciprocal complex skin depth, 1/m, principal root
//   rho = resistivity, ohm m, from the DC resistance R and the metal cross-section, so that every
//         formula tends to R at zero frequency (the solid one to 1.00003 R)
//
//   solid     Zi = 0.3179 rho / (pi r^2) + rho m / (2 pi r) coth(0.733 m r)
//   tube      Zi = rho / (2 pi r (q + r)) + rho m / (2 pi r) coth((r - q) m),  q the inner radius
//             inside     rho m / (2 pi q) coth((r - q) m) - rho / (2 pi q (q + r))
//             transfer   rho m / (pi (q + r)) / sinh((r - q) m)
//   stranded  Zi = R - rho2 / (P 0.777 pi s r) + rho2 m / (P pi s) coth(0.777 m r),
//             s strand radius, P = outer strands + 2, rho2 = 2.25 rho
#include "overhead/internal_impedance.h"

#include "base/console.h"
#include "base/constants.h"
#include "base/solve_error.h"
#include "kernels/hyperbolic.h"
#include "store/rundata.h"

#include <cmath>

namespace lcp {

namespace {

constexpr double SOLIDARGUMENT = 0.733;
constexpr double SOLIDCONSTANT = 0.3179;
constexpr double STRANDARGUMENT = 0.777;
constexpr double STRANDARGUMENTPI = 2.4410174918392693; // 0.777 pi
constexpr double STRANDFACTOR = 2.25;
constexpr double OUTERMORE = 2.0; // added to the number of strands of the outer layer

Complex skinDepthInverse(double w, double mur, double rho) {
  return std::sqrt(Complex(0.0, w * MU0 * mur / rho));
}

} // namespace

void checkStrands(std::string_view owner, const Strands& strands) {
  const struct {
    std::string_view key;
    double value;
    bool sound;
  } parts[] = {{"Strand Radius", strands.radius, strands.radius != 0.0},
               {"Total Number of Strands", strands.total, strands.total != 0.0},
               {"Number of Outer Strands", strands.outer,
                !std::isnan(strands.outer) && strands.outer != -OUTERMORE}};
  for (const auto& part : parts) {
    if (part.sound) continue;
    console::openStars();
    console::print("{}:", owner);
    console::print("{} ({:.4g}) gives no Finite Impedance!", part.key, part.value);
    stopInStars();
  }
}

Complex COTH(Complex z) {
  const Complex E = std::exp(-2.0 * z);
  return (1.0 + E) / (1.0 - E);
}

Complex solidImpedance(double w, double r, double rho, double mur) {
  const Complex m = skinDepthInverse(w, mur, rho);
  return SOLIDCONSTANT * rho / (PI * r * r) + rho / r * INVTWOPI * m * COTH(SOLIDARGUMENT * m * r);
}

Complex tubeImpedance(double w, double q, double r, double rho, double mur) {
  const Complex m = skinDepthInverse(w, mur, rho);
  return INVTWOPI * rho / (r * (q + r)) + rho / r * INVTWOPI * m * COTH((r - q) * m);
}

Complex tubeInnerImpedance(double w, double q, double r, double rho, double mur) {
  const Complex m = skinDepthInverse(w, mur, rho);
  return rho / (TWOPI * q) * (m * COTH((r - q) * m) - 1.0 / (q + r));
}

Complex tubeTransferImpedance(double w, double q, double r, double rho, double mur) {
  const Complex m = skinDepthInverse(w, mur, rho);
  return rho * m / (PI * (q + r)) / CSINH((r - q) * m);
}

Complex strandedImpedance(double w, double r, const Strands& strands, double R, double mur) {
  const double s = strands.radius;
  const double rho = PI * s * s * strands.total * R;
  const double rho2 = STRANDFACTOR * rho;
  const double P = strands.outer + OUTERMORE;
  const Complex m = skinDepthInverse(w, mur, rho);
  return R - rho2 / (P * STRANDARGUMENTPI * s) / r +
         rho2 / (P * PI * s) * m * COTH(STRANDARGUMENT * r * m);
}

Complex ZINT(double w, int i) {
  const ConductorTable& C = RUNDATA.cond;
  const double r = C.CRAD[i];
  const double R = C.CRDC[i];
  const double mur = C.CMUR[i];
  if (C.CTUBE[i]) {
    const double q = r - C.CTHICK[i];
    return tubeImpedance(w, q, r, R * PI * (r * r - q * q), mur);
  }
  if (C.CSTRND[i]) return strandedImpedance(w, r, {C.CSTRAD[i], C.CNOUT[i], C.CNTOT[i]}, R, mur);
  return solidImpedance(w, r, PI * r * r * R, mur);
}

} // namespace lcp

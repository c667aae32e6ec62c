// Earth return of overhead conductors.
//
//   p       = sqrt(rho / (j w mu))        constant soil; mu = GMUR mu0; m
//   p       = sqrt(1 / (j w mu (S + jB))) frequency-dependent soil, F = (f in MHz)^GFDFAC,
//             B = F GFDSIG,  S = F GFDSIG / tan(pi/2 GFDFAC) + GSIGLF; S/m
//
// With the average heights h and the horizontal distance x, both in m:
//
//   closed form (complex depth):  E_ii = 1/2 log(1 + 4 p (2 h + p) / (2 h)^2)
//                                 E_ij = 1/2 log(1 + 4 p (H + p) / (H^2 + x^2)),  H = h_i + h_j
//   numerical integration (Carson's integral J):
//                                 E_ii = J(2 h / p, 0)
//                                 E_ij = J(D / p, theta),  D = sqrt(x^2 + H^2), tan theta = x / H
#include "overhead/earth_return.h"

#include "base/console.h"
#include "base/constants.h"
#include "base/number_forms.h"
#include "base/stop.h"
#include "overhead/carson_integral.h"
#include "overhead/overhead_store.h"
#include "store/rundata.h"

#include <cmath>

namespace lcp {

namespace {

constexpr double MEGAHERTZ = 1.59154943091895e-07; // 1e-6 / (2 pi): rad/s to MHz
constexpr double SERIESLIMIT = 0.1;                // for smaller |z| the power series is used
constexpr int SERIESTERMS = 100;
constexpr double LARGE = 1e100; // beyond it squares may overflow
constexpr int ERRORRULE = 53;

Complex log1pSeries(Complex z) {
  Complex sum = z;
  Complex power = z; // (-1)^(n+1) z^n
  for (int n = 2; n <= SERIESTERMS; ++n) {
    power *= -z;
    const Complex next = sum + power / static_cast<double>(n);
    if (next == sum) break;
    sum = next;
  }
  return sum;
}

Complex closedForm(int i, int j) {
  const Complex p = OVERHEAD.DEPTH;
  const double H = RUNDATA.cond.CYAVG[i] + RUNDATA.cond.CYAVG[j];
  return 0.5 * LOG1P(4.0 * p * (H + p) * OVERHEAD.DINV(i, j));
}

Complex integral(int i, int j) {
  const ConductorTable& C = RUNDATA.cond;
  const double H = C.CYAVG[i] + C.CYAVG[j];
  if (i == j) return CARSINT(H * OVERHEAD.DEPTHINV, 0.0);
  const double x = C.CX[i] - C.CX[j];
  return CARSINT(std::sqrt(x * x + H * H) * OVERHEAD.DEPTHINV, std::atan2(x, H));
}

} // namespace

Complex soilAdmittivity(double w) {
  const Ground& G = RUNDATA.ground;
  const double F = std::pow(w * MEGAHERTZ, G.GFDFAC);
  const double T = std::tan(HALFPI14 * G.GFDFAC);
  return {F / T * G.GFDSIG + G.GSIGLF, F * G.GFDSIG};
}

Complex GRDDEPTH(double w) {
  const Ground& G = RUNDATA.ground;
  const double wmu = w * (G.GMUR * MU0);
  if (!G.GRTYPE) return std::sqrt(Complex(0.0, -G.GRHO / wmu));
  return std::sqrt(1.0 / (Complex(0.0, wmu) * soilAdmittivity(w)));
}

Complex LOG1P(Complex z) {
  const double size = std::abs(z);
  if (size < SERIESLIMIT) return log1pSeries(z);
  if (!(size < LARGE)) return std::log(1.0 + z);
  const double x = 1.0 + z.real();
  const double y = z.imag();
  // |1 + z|^2 - 1 for small z, where the square itself would lose digits.
  const double twice =
      size < 1.0 ? std::log1p(z.real() * (2.0 + z.real()) + y * y) : std::log(x * x + y * y);
  return {0.5 * twice, std::atan2(y, x)};
}

void illegalEarthFormula(int formula, const EarthFormulaKey& key) {
  console::note(
      fmt::format("{} is {}; for {} there are {}", key.name, formula, key.bodies, key.formulas));
  console::rule('*', ERRORRULE);
  console::line(" *ERROR*: Illegal earth return formula selected:");
  console::line("           Ground Formula = " + integerField(formula, 1));
  console::line();
  console::line("          Please choose a proper ground return");
  console::line("          formula in the 'Line/Cable Constants");
  console::line("          Entry of Ground Data' component.");
  console::rule('*', ERRORRULE);
  stop(1);
}

Complex EARTHTERM(int i, int j) {
  switch (RUNDATA.ground.EARTHF) {
  case EARTHCLOSED: return closedForm(i, j);
  case EARTHINTEGRAL: return integral(i, j);
  default:
    illegalEarthFormula(RUNDATA.ground.EARTHF,
                        {"EarthImpedanceFormula", "overhead conductors", "0 and 2"});
  }
}

} // namespace lcp

#include "overhead/internal_impedance.h"

#include "base/constants.h"
#include "store/rundata.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace lcp;

namespace {

constexpr int POINTS = 4000;

// exp(-z) I_n(z) by the integral of exp(z (cos a - 1)) cos(n a) over a half turn, which the
// trapezium rule takes to rounding.
Complex besselI(int n, Complex z) {
  Complex sum = 0.5 * (1.0 + std::exp(-2.0 * z) * std::cos(n * PI));
  for (int k = 1; k < POINTS; ++k) {
    const double a = PI * k / POINTS;
    sum += std::exp(z * (std::cos(a) - 1.0)) * std::cos(n * a);
  }
  return sum / static_cast<double>(POINTS);
}

// exp(z) K_n(z) by the integral of exp(-z (cosh a - 1)) cosh(n a) from 0 on.
Complex besselK(int n, Complex z) {
  const double step = std::acosh(1.0 + 60.0 / z.real()) / POINTS;
  Complex sum = 0.5;
  for (int k = 1; k < POINTS; ++k) {
    const double a = step * k;
    sum += std::exp(-z * (std::cosh(a) - 1.0)) * std::cosh(n * a);
  }
  return step * sum;
}

// Impedance of a round conductor of outer radius r and inner radius q with a field outside only.
Complex exact(double w, double r, double q, double R, double mur) {
  const double rho = R * PI * (r * r - q * q);
  const Complex m = std::sqrt(Complex(0.0, w * MU0 * mur / rho));
  const Complex outer = rho * m / (TWOPI * r);
  if (q == 0.0) return outer * besselI(0, m * r) / besselI(1, m * r);
  const Complex through = std::exp(-2.0 * m * (r - q));
  return outer *
         (besselI(0, m * r) * besselK(1, m * q) + besselK(0, m * r) * besselI(1, m * q) * through) /
         (besselI(1, m * r) * besselK(1, m * q) - besselK(1, m * r) * besselI(1, m * q) * through);
}

void setShape(bool tube, bool strands, double mur = 1.0) {
  ConductorTable& C = RUNDATA.cond;
  RUNDATA = {};
  C.CRAD[1] = 0.0152;
  C.CRDC[1] = 6e-5;
  C.CMUR[1] = mur;
  C.CTUBE[1] = tube;
  C.CSTRND[1] = strands;
  C.CTHICK[1] = 0.006;
  C.CSTRAD[1] = 0.0017;
  C.CNOUT[1] = 24;
  C.CNTOT[1] = 54;
}

} // namespace

TEST(InternalImpedance, TendsToTheDirectCurrentResistance) {
  for (const bool tube : {false, true}) {
    for (const bool strands : {false, true}) {
      setShape(tube, strands);
      const Complex Z = ZINT(TWOPI * 1e-6, 1) / 6e-5;
      EXPECT_NEAR(Z.real(), tube || strands ? 1.0 : 0.3179 + 0.5 / 0.733, 1e-12);
      EXPECT_GT(Z.imag(), 0.0);
      EXPECT_LT(Z.imag(), 1e-6);
    }
  }
}

TEST(InternalImpedance, SkinTermOfStrandsAtHighFrequencyIsOneOfAPlaneSurface) {
  const double w = TWOPI * 1e8;
  ConductorTable& C = RUNDATA.cond;
  setShape(false, true);
  const Complex strands = ZINT(w, 1);
  const double metal = PI * C.CSTRAD[1] * C.CSTRAD[1] * 54 * 6e-5;
  const double term = 2.25 * metal / (26 * PI * C.CSTRAD[1]);
  EXPECT_NEAR(strands.imag() / (term * std::sqrt(w * MU0 / metal / 2)), 1.0, 1e-12);
  EXPECT_NEAR((strands.real() - 6e-5 + term / (0.777 * 0.0152)) / strands.imag(), 1.0, 1e-12);
}

// The error of the closed form, largest where the skin depth is about the wall or the radius. A
// tube is taken for a plane sheet, which costs more the thicker its wall.
TEST(InternalImpedance, FollowsTheBesselFunctions) {
  // wall over the radius, 1 for a solid conductor, and error
  const double cases[][2] = {{1.0, 0.03}, {0.05, 2e-4}, {0.1, 8e-4}, {0.2, 0.005}, {0.5, 0.025}};
  for (const auto& [wall, error] : cases) {
    double worst = 0;
    for (const double mur : {1.0, 60.0}) {
      for (int half = 0; half <= 14; ++half) {
        const double w = TWOPI * std::pow(10.0, 0.5 * half);
        setShape(wall < 1.0, wall < 1.0, mur); // tube goes before strands
        RUNDATA.cond.CTHICK[1] = wall * 0.0152;
        const Complex Z = exact(w, 0.0152, (1.0 - wall) * 0.0152, 6e-5, mur);
        worst = std::max(worst, std::abs(ZINT(w, 1) - Z) / std::abs(Z));
      }
    }
    EXPECT_LT(worst, error) << wall;
    EXPECT_GT(worst, 0.1 * error) << wall;
  }
}

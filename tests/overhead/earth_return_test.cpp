#include "overhead/earth_return.h"

#include "overhead/overhead_store.h"
#include "store/rundata.h"
#include "support/bessel_reference.h"
#include "support/overhead_lines.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

using namespace lcp;
using namespace lcp::test;

TEST(Log1p, HoldsItsDigitsAtAnySize) {
  const Complex cases[] = {{1e-300, 1e-290}, {1e-17, -3e-17}, {1e-8, 2e-8},  {0.03, -0.05},
                           {0.1, 0.0},       {0.0, 0.0999},   {0.0, -0.1},   {-0.06, 0.079},
                           {0.5, -0.5},      {1e200, -1e200}, {-0.09, 1e-12}};
  for (const Complex z : cases) {
    const long double x = z.real(), y = z.imag();
    const long double size = std::abs(Wide(1 + x, y));
    const long double re = size < 2 ? 0.5L * std::log1p(x * (2 + x) + y * y) : std::log(size);
    const Complex expected(static_cast<double>(re), static_cast<double>(std::atan2(y, 1 + x)));
    EXPECT_LT(std::abs(LOG1P(z) - expected), 4e-16 * std::abs(expected)) << z;
  }
  EXPECT_TRUE(std::isnan(LOG1P({std::numeric_limits<double>::quiet_NaN(), 0.0}).real()));
}

TEST(Soil, DepthOfConstantAndOfFrequencyDependentSoil) {
  RUNDATA = {};
  const double w = TWOPI * 60;
  const Complex p = GRDDEPTH(w);
  EXPECT_NEAR(std::abs(p), std::sqrt(100.0 / (w * MU0)), 1e-10);
  EXPECT_NEAR(std::arg(p), -PI / 4, 1e-15);
  RUNDATA.ground.GMUR = 4.0;
  EXPECT_LT(std::abs(GRDDEPTH(w) - 0.5 * p), 1e-12 * std::abs(p));
  // Without its frequency terms the second soil is the first with the resistivity 1 / GSIGLF.
  RUNDATA.ground = {.GRTYPE = true, .GSIGLF = 0.01, .GFDSIG = 0.0};
  EXPECT_LT(std::abs(GRDDEPTH(w) - p), 1e-12 * std::abs(p));
  // At 1 MHz the factor is 1 whatever the exponent; at exponent 1/2 the tangent is 1 as well, and
  // at 1 the conductivity stays and the permittivity is constant.
  const double cases[][4] = {
      {0.5, 1e6, 0.032, 0.03}, {0.5, 4e6, 0.062, 0.06}, {1.0, 2e6, 0.002, 0.06}};
  for (const auto& [exponent, f, real, imaginary] : cases) {
    RUNDATA.ground = {.GRTYPE = true, .GSIGLF = 0.002, .GFDSIG = 0.03, .GFDFAC = exponent};
    EXPECT_LT(std::abs(soilAdmittivity(TWOPI * f) - Complex(real, imaginary)), 1e-12) << f;
  }
}

// Two wires over the ground, solved once so that geometry and depth stand in the store.
TEST(EarthTerm, IsTheImageAtComplexDepthOrTheIntegral) {
  for (const double f : {1e-6, 0.1, 60.0, 1e4, 1e7}) {
    RUNDATA = {};
    RUNDATA.cond.NCOND = RUNDATA.line.NC = 2;
    setConductor(1, 0.0, 12.0, 0.01, 1e-4);
    setConductor(2, 11.0, 15.0, 0.01, 1e-4);
    solveLine(f);
    const Wide p(OVERHEAD.DEPTH), self = std::log((24.0L + 2.0L * p) / 24.0L);
    const Wide image = (27.0L + 2.0L * p) * (27.0L + 2.0L * p) + 121.0L;
    const Wide mutual = 0.5L * std::log(image / (27.0L * 27.0L + 121.0L));
    EXPECT_LT(std::abs(Wide(EARTHTERM(1, 1)) - self), 1e-15L * std::abs(self)) << f;
    EXPECT_LT(std::abs(Wide(EARTHTERM(1, 2)) - mutual), 1e-15L * std::abs(mutual)) << f;
    EXPECT_EQ(EARTHTERM(1, 2), EARTHTERM(2, 1));
    RUNDATA.ground.EARTHF = EARTHINTEGRAL;
    for (const double x : {0.0, 11.0}) {
      const Complex J = earthIntegral(x == 0.0 ? 24 : 27, 0, x, 1.0 / OVERHEAD.DEPTH);
      EXPECT_LT(std::abs(EARTHTERM(1, x == 0.0 ? 1 : 2) / J - 1.0), 1e-3) << f;
    }
  }
}

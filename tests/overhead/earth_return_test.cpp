#include "overhead/earth_return.h"

#include "base/constants.h"
#include "overhead/overhead_store.h"
#include "store/rundata.h"
#include "support/child.h"
#include "support/overhead_lines.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

using namespace lcp;

namespace {

// Two wires over the ground, solved once so that geometry and depth stand in the store.
void twoWires(double f, int formula, double x = 11.0) {
  RUNDATA = {};
  RUNDATA.cond.NCOND = RUNDATA.line.NC = 2;
  test::setConductor(1, 0.0, 12.0, 0.01, 1e-4);
  test::setConductor(2, x, 15.0, 0.01, 1e-4);
  RUNDATA.ground.EARTHF = formula;
  test::solveLine(f);
}

} // namespace

TEST(Log1p, HoldsItsDigitsAtAnySize) {
  const Complex cases[] = {{1e-300, 1e-290}, {1e-17, -3e-17}, {1e-8, 2e-8},  {0.03, -0.05},
                           {0.1, 0.0},       {0.0, 0.0999},   {0.0, -0.1},   {-0.06, 0.079},
                           {0.5, -0.5},      {1e200, -1e200}, {-0.09, 1e-12}};
  for (const Complex z : cases) {
    const long double x = z.real(), y = z.imag();
    const long double size = std::abs(test::Wide(1 + x, y));
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
  // At 1 MHz the factor is 1 whatever the exponent; at exponent 1/2 the tangent is 1 as well.
  RUNDATA.ground = {.GRTYPE = true, .GSIGLF = 0.002, .GFDSIG = 0.03, .GFDFAC = 0.5};
  const Complex half = soilAdmittivity(TWOPI * 1e6);
  EXPECT_NEAR(half.real(), 0.032, 1e-12);
  EXPECT_NEAR(half.imag(), 0.03, 1e-12);
  EXPECT_NEAR(soilAdmittivity(TWOPI * 4e6).imag(), 0.06, 1e-12);
  RUNDATA.ground.GFDFAC = 1.0; // the conductivity stays, the permittivity is constant
  const Complex one = soilAdmittivity(TWOPI * 2e6);
  EXPECT_NEAR(one.real(), 0.002, 1e-12);
  EXPECT_NEAR(one.imag(), 0.06, 1e-12);
}

TEST(EarthTerm, ClosedFormIsTheImageAtComplexDepth) {
  for (const double f : {1e-6, 0.1, 60.0, 1e4, 1e7}) {
    twoWires(f, EARTHCLOSED);
    const test::Wide p(OVERHEAD.DEPTH);
    const test::Wide self = std::log((24.0L + 2.0L * p) / 24.0L);
    const test::Wide image = (27.0L + 2.0L * p) * (27.0L + 2.0L * p) + 121.0L;
    const test::Wide mutual = 0.5L * std::log(image / (27.0L * 27.0L + 121.0L));
    EXPECT_LT(std::abs(test::Wide(EARTHTERM(1, 1)) - self), 1e-15L * std::abs(self)) << f;
    EXPECT_LT(std::abs(test::Wide(EARTHTERM(1, 2)) - mutual), 1e-15L * std::abs(mutual)) << f;
    EXPECT_EQ(EARTHTERM(1, 2), EARTHTERM(2, 1));
  }
}

TEST(EarthTerm, OneAboveTheOtherIsASelfTermOfTheMeanHeight) {
  twoWires(500.0, EARTHINTEGRAL, 0.0);
  const Complex mutual = EARTHTERM(1, 2);
  RUNDATA.cond.CYAVG[1] = 13.5;
  EXPECT_EQ(mutual, EARTHTERM(1, 1));
}

TEST(EarthTerm, OtherFormulaEndsTheRun) {
  const std::string stars(53, '*');
  const test::ChildResult r = test::runChild([] { twoWires(60.0, 12); });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.console, test::lines({stars, " *ERROR*: Illegal earth return formula selected:",
                                    "           Ground Formula = *", "",
                                    "          Please choose a proper ground return",
                                    "          formula in the 'Line/Cable Constants",
                                    "          Entry of Ground Data' component.", stars}));
}

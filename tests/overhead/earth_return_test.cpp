#include "overhead/earth_return.h"

#include "overhead/carson_integral.h"
#include "overhead/overhead_store.h"
#include "store/rundata.h"
#include "support/bessel_reference.h"
#include "support/console_capture.h"
#include "support/overhead_lines.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>

using namespace lcp::test;
using namespace lcp;

namespace {

double relative(Complex a, Complex b) { return std::abs(a - b) / std::abs(b); }

} // namespace

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
      EXPECT_LT(relative(EARTHTERM(1, x == 0.0 ? 1 : 2), J), 1e-3) << f;
    }
  }
}

// From 0.01 Hz to 10 MHz, 1 to 10000 ohm m. With panels a tenth as wide what is left of the error
// is the part behind the last panel: the rule that ends the integral can be met early where the
// cosine is 0 in the middle of a panel, as at x = 3 H.
TEST(CarsonIntegral, AgreesWithQuadratureToTheErrorOfItsPanels) {
  double worst = 0, narrow = 0, behind = 0;
  const double pairs[][2] = {{8, 0}, {24, 11}, {20, 60}, {90, 25}}; // sum of heights, distance, m
  for (const auto& [H, x] : pairs) {
    for (int decade = -2; decade <= 7; ++decade) {
      for (const double rho : {1.0, 100.0, 1e4}) {
        const double k = std::sqrt(PI * std::pow(10.0, decade) * MU0 / rho) * std::hypot(H, x);
        const double theta = std::atan2(x, H), up = std::cos(theta), across = std::sin(theta);
        const Complex z(k, k), J = earthIntegral(up, 0, across, z);
        const CarsonSum cut = carsonPanels(z, theta, 10);
        const Complex part = earthIntegral(up, 0, across, z, 1.0, 0.05 * cut.linear);
        worst = std::max(worst, relative(CARSINT(z, theta), J));
        narrow = std::max(narrow, relative(cut.A, part));
        behind = std::max(behind, relative(part, J));
      }
    }
  }
  EXPECT_LT(worst, 1.5e-3);
  EXPECT_LT(narrow, 1e-6);
  EXPECT_LT(behind, 1e-4);
}

TEST(CarsonIntegral, FastSumIsThePlainSum) {
  for (const double theta : {0.0, 0.1, -0.5, 0.9, 1.2, 1.4}) {
    for (const double angle : {PI / 4, 0.9, 1.2, 1.5, 0.1, -0.5}) {
      for (int step = 0; step <= 20; ++step) {
        const Complex z = std::polar(std::pow(10.0, -9.9 + 0.87 * step), angle);
        ASSERT_TRUE(carsonBlocksTake(z, theta));
        const CarsonSum plain = carsonPanels(z, theta), fast = carsonBlocks(z, theta);
        EXPECT_LT(relative(fast.A, plain.A), 1e-14) << z << theta;
        EXPECT_EQ(fast.geometric, plain.geometric) << z << theta;
        EXPECT_EQ(fast.linear, plain.linear) << z << theta;
        EXPECT_TRUE(fast.linearDone && plain.linearDone) << z << theta;
      }
    }
  }
}

TEST(CarsonIntegral, LimitOfLargeArguments) {
  for (const double theta : {0.0, 0.7, 1.3}) {
    const Complex z(4e4, 4e4);
    EXPECT_LT(relative(CARSINT(z, theta), 2.0 * std::cos(theta) / z), 1e-4);
    EXPECT_EQ(CARSINT(z, theta), CARSINT(z, -theta));
  }
  // Beyond the fast sum: the same limit, and no overflow.
  EXPECT_FALSE(carsonBlocksTake(1e150, 0.0));
  EXPECT_NEAR(CARSINT(1e150, 0.0).real() * 1e150, 2.0, 1e-5);
}

TEST(CarsonIntegral, SaysWhenAStageRunsOut) {
  const std::string failed = "Failed to converge on ", going = "Exec. Continuing\n";
  const std::string hyperbolic = failed + "hyperbolic step length for R=   ";
  const std::string linear = failed + "linear step length for R=   ";
  const auto told = [](Complex z, double theta) { return consoleOf([=] { CARSINT(z, theta); }); };
  EXPECT_EQ(told(1e-3, 0.4), "");
  EXPECT_EQ(told(1e-100, 0.0), hyperbolic + "1.000000-100" + going);
  EXPECT_EQ(told(0.0, 0.0), hyperbolic + "0.000000E+00" + going + linear + "0.000000E+00" + going);
  // A conductor below ground by its average height: the integrand grows without limit.
  EXPECT_EQ(told({3.0, 4.0}, 2.0), linear + "5.000000E+00" + going);
}

#include "overhead/carson_integral.h"

#include "support/bessel_reference.h"
#include "support/console_capture.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

using namespace lcp;

namespace {

double relative(Complex a, Complex b) { return std::abs(a - b) / std::abs(b); }

} // namespace

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
        const Complex z(k, k), J = test::earthIntegral(up, 0, across, z);
        const CarsonSum cut = carsonPanels(z, theta, 10);
        const Complex part = test::earthIntegral(up, 0, across, z, 1.0, 0.05 * cut.linear);
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
  const auto told = [](Complex z, double theta) {
    return test::consoleOf([=] { CARSINT(z, theta); });
  };
  EXPECT_EQ(told(1e-3, 0.4), "");
  EXPECT_EQ(told(1e-100, 0.0), hyperbolic + "1.000000-100" + going);
  EXPECT_EQ(told(0.0, 0.0), hyperbolic + "0.000000E+00" + going + linear + "0.000000E+00" + going);
  // A conductor below ground by its average height: the integrand grows without limit.
  EXPECT_EQ(told({3.0, 4.0}, 2.0), linear + "5.000000E+00" + going);
}

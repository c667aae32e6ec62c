// The sums of Carson's integral; tests/values holds its values.
#include "overhead/carson_integral.h"

#include "base/constants.h"
#include "support/console_capture.h"

#include <gtest/gtest.h>

using namespace lcp;

TEST(CarsonIntegral, FastSumIsThePlainSum) {
  for (const double theta : {0.0, 0.1, -0.5, 0.9, 1.2, 1.4}) {
    for (const double angle : {PI / 4, 0.9, 1.2, 1.5, 0.1, -0.5}) {
      for (int step = 0; step <= 20; ++step) {
        const Complex z = std::polar(std::pow(10.0, -9.9 + 0.87 * step), angle);
        ASSERT_TRUE(carsonBlocksTake(z, theta));
        const CarsonSum plain = carsonPanels(z, theta), fast = carsonBlocks(z, theta);
        EXPECT_LT(std::abs(fast.A - plain.A), 1e-14 * std::abs(plain.A)) << z << theta;
        EXPECT_EQ(fast.geometric, plain.geometric) << z << theta;
        EXPECT_EQ(fast.linear, plain.linear) << z << theta;
        EXPECT_TRUE(fast.linearDone && plain.linearDone) << z << theta;
      }
    }
  }
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
  // A conductor whose average height is below ground: the integrand grows without limit.
  EXPECT_EQ(told({3.0, 4.0}, 2.0), linear + "5.000000E+00" + going);
}

#include "cable/earth_functions.h"

#include "base/constants.h"
#include "support/bessel_reference.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace lcp;

// The limits are those of the forms: loss of digits by cancellation up to |z| = 9, the part
// exp(-2 z) dropped above it, the first term of the large argument above 150.
TEST(KZero, IsTheBesselFunction) {
  struct {
    double angle, size, limit;
  } const cases[] = {
      {0.0, 1e-9, 1e-15},  {0.0, 9.0, 1e-8},      {0.0, 9.01, 2e-8},   {0.0, 18.1, 2e-12},
      {0.0, 150.0, 1e-14}, {0.0, 151.0, 4e-6},    {PI / 4, 9, 1e-10},  {PI / 4, 9.01, 4e-6},
      {PI / 4, 18, 1e-11}, {PI / 4, 18.1, 2e-12}, {PI / 4, 49, 1e-13}, {PI / 4, 149, 1e-14},
      {PI / 4, 600, 3e-7}, {1.35, 9.0, 2e-12},    {1.35, 9.01, 0.02},  {1.35, 149.0, 1e-14}};
  for (const auto& c : cases) {
    const Complex z = std::polar(c.size, c.angle);
    const Complex K0 = test::scaledBesselK(0, z);
    EXPECT_LT(std::abs(KZERO(z) * std::exp(z) - K0), c.limit * std::abs(K0)) << z;
  }
  EXPECT_EQ(KZERO(0.0), 1e300);
  // The forms meet at 9 and 150, each taken to the limit included.
  EXPECT_LT(std::abs(KZERO({150.0, 0.0}) / KZERO({std::nextafter(150.0, 200.0), 0.0}) - 1.0), 4e-6);
}

TEST(Log1ps, PolynomialUpToATenthAndLogarithmAbove) {
  for (const double angle : {0.0, 0.7, PI / 2, 2.5, PI}) {
    for (const double size : {1e-200, 1e-9, 1e-3, 0.0999, 0.1001, 0.5, 40.0}) {
      const Complex z = std::polar(size, angle);
      const long double x = z.real(), y = z.imag();
      const Complex expected(static_cast<double>(0.5L * std::log1p(x * (2 + x) + y * y)),
                             static_cast<double>(std::atan2(y, 1 + x)));
      const double seventh = size < 0.1 ? std::pow(size, 6) / 7.0 * 1.1 : 0.0;
      EXPECT_LT(std::abs(LOG1PS(z) - expected), (seventh + 3e-15) * std::abs(expected)) << z;
    }
  }
  // A tenth itself belongs to the polynomial, which is 1.3e-8 off there.
  EXPECT_NEAR(LOG1PS(0.1).real() - std::log1p(0.1), -1.3e-8, 1e-9);
}

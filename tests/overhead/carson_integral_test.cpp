#include "overhead/carson_integral.h"

#include "base/constants.h"
#include "support/child.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <vector>

using namespace lcp;

namespace {

using Wide = std::complex<long double>;

Wide integrand(long double t, Wide z, long double theta) {
  return 2.0L * std::exp(-t * std::cos(theta)) * std::cos(t * std::sin(theta)) /
         (t + std::sqrt(t * t + z * z));
}

// Composite Gauss rule of 5 points, of order 10, over intervals halved until two sums agree.
Wide gauss(long double lo, long double hi, Wide z, long double theta) {
  const long double h = (hi - lo) / 2, c = (lo + hi) / 2, root = 2 * std::sqrt(10.0L / 7);
  const long double far = std::sqrt(5 + root) / 3, near = std::sqrt(5 - root) / 3;
  const long double spread = 13 * std::sqrt(70.0L);
  const auto pair = [&](long double at) {
    return integrand(c - h * at, z, theta) + integrand(c + h * at, z, theta);
  };
  return h * (128.0L / 225 * integrand(c, z, theta) + (322 + spread) / 900 * pair(near) +
              (322 - spread) / 900 * pair(far));
}

Wide adaptive(long double lo, long double hi, Wide z, long double theta, int depth) {
  const long double c = (lo + hi) / 2;
  const Wide left = gauss(lo, c, z, theta), right = gauss(c, hi, z, theta);
  if (std::abs(left + right - gauss(lo, hi, z, theta)) < 1e-14L || depth == 0) return left + right;
  return adaptive(lo, c, z, theta, depth - 1) + adaptive(c, hi, z, theta, depth - 1);
}

// The integral to the end by adaptive quadrature over intervals that double from |z| / 4 on.
Complex quadrature(Complex z, double theta, long double end) {
  long double lo = 0;
  long double hi = std::min<long double>(std::abs(z) / 4, 1.0L);
  Wide sum = 0;
  while (lo < end) {
    sum += adaptive(lo, hi, Wide(z), theta, 20);
    lo = hi;
    hi = std::min(2 * lo, end);
  }
  return {static_cast<double>(sum.real()), static_cast<double>(sum.imag())};
}

double relative(Complex a, Complex b) { return std::abs(a - b) / std::abs(b); }

} // namespace

// From 0.01 Hz to 10 MHz, 1 to 10000 ohm m. With panels a tenth as wide what is left of the error
// is the part behind the last panel: the rule that ends the integral can be met early where the
// cosine is 0 in the middle of a panel, as at x = 3 H.
TEST(CarsonIntegral, AgreesWithQuadratureToTheErrorOfItsPanels) {
  double worst = 0;
  double narrow = 0;
  double behind = 0;
  const struct {
    double H, x; // sum of the heights and horizontal distance, m
  } pairs[] = {{8, 0}, {24, 11}, {20, 60}, {90, 25}};
  for (const auto& pair : pairs) {
    for (int decade = -2; decade <= 7; ++decade) {
      for (const double rho : {1.0, 100.0, 1e4}) {
        const double k =
            std::sqrt(PI * std::pow(10.0, decade) * MU0 / rho) * std::hypot(pair.H, pair.x);
        const double theta = std::atan2(pair.x, pair.H);
        const Complex J = quadrature({k, k}, theta, 50.0L / std::cos(theta));
        const CarsonSum cut = carsonPanels({k, k}, theta, 10);
        const Complex part = quadrature({k, k}, theta, 0.05L * cut.linear);
        worst = std::max(worst, relative(CARSINT({k, k}, theta), J));
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
  double worst = 0;
  for (const double theta : {0.0, 0.1, -0.5, 0.9, 1.2, 1.4}) {
    for (const double angle : {PI / 4, 0.9, 1.2, 1.5, 0.1, -0.5}) {
      for (int step = 0; step <= 20; ++step) {
        const Complex z = std::polar(std::pow(10.0, -9.9 + 0.87 * step), angle);
        ASSERT_TRUE(carsonBlocksTake(z, theta));
        const CarsonSum plain = carsonPanels(z, theta);
        const CarsonSum fast = carsonBlocks(z, theta);
        worst = std::max(worst, relative(fast.A, plain.A));
        EXPECT_EQ(fast.geometric, plain.geometric) << z << theta;
        EXPECT_EQ(fast.linear, plain.linear) << z << theta;
        EXPECT_TRUE(fast.linearDone && plain.linearDone) << z << theta;
      }
    }
  }
  EXPECT_LT(worst, 1e-14);
}

TEST(CarsonIntegral, LimitsOfSmallAndLargeArguments) {
  const double EULER = 0.57721566490153286;
  for (const double r : {1e-8, 1e-6, 1e-4}) {
    const Complex z(r, r);
    EXPECT_NEAR(std::abs(CARSINT(z, 0.0) - (std::log(2.0 / z) + 0.5 - EULER)), 0.0, 1.5e-3);
  }
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
  const std::string hyperbolic = "Failed to converge on hyperbolic step length for R=";
  const std::string linear = "Failed to converge on linear step length for R=";
  const auto inChild = [](Complex z, double theta) {
    return test::runChild([=] { CARSINT(z, theta); }).console;
  };
  EXPECT_EQ(inChild(1e-3, 0.4), "");
  EXPECT_EQ(inChild(1e-100, 0.0), hyperbolic + "   1.000000-100Exec. Continuing\n");
  EXPECT_EQ(inChild(0.0, 0.0), hyperbolic + "   0.000000E+00Exec. Continuing\n" + linear +
                                   "   0.000000E+00Exec. Continuing\n");
  // A conductor below ground by its average height: the integrand grows without limit.
  EXPECT_EQ(inChild({3.0, 4.0}, 2.0), linear + "   5.000000E+00Exec. Continuing\n");
}

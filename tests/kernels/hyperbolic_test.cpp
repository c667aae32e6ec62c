#include "kernels/hyperbolic.h"

#include <gtest/gtest.h>
#include <limits>

using namespace lcp;

namespace {

constexpr double eps = std::numeric_limits<double>::epsilon();

double relative(Complex a, Complex b) { return std::abs(a - b) / std::abs(b); }

} // namespace

TEST(Hyperbolic, AgreesWithTheLibraryOnAllBranches) {
  const double reals[] = {-700.0, -30.0, -1.5, -1.0, -0.2, 0.0, 0.3, 1.0, 1.0 + 1e-9, 4.0, 29.9};
  for (double re : reals) {
    for (double im : {-9.0, -0.7, 0.1, 1.4, 300.0}) {
      const Complex z(re, im);
      // The symmetric forms lose what the two powers have in common.
      const double limit = 20.0 * eps * (1.0 + 1.0 / std::abs(std::sinh(z)));
      EXPECT_LT(relative(CSINH(z), std::sinh(z)), limit) << z;
      EXPECT_LT(relative(CCOSH(z), std::cosh(z)),
                20.0 * eps / std::min(1.0, std::abs(std::cosh(z))))
          << z;
      EXPECT_LT(relative(CTANH(z) * CCOTH(z), 1.0), 4.0 * eps) << z;
      if (std::abs(re) < 300.0) {
        EXPECT_LT(relative(CTANH(z), std::tanh(z)), 20.0 * limit) << z;
      }
    }
  }
}

TEST(Hyperbolic, Limits) {
  EXPECT_EQ(CSINH({100.0, 1.0}), CSINH({30.0, 1.0}));
  EXPECT_EQ(CCOSH({30.1, -2.0}), CCOSH({30.0, -2.0}));
  for (const double sign : {1.0, -1.0}) {
    EXPECT_EQ(CTANH({sign * 1e4, 3.0}), sign);
    EXPECT_EQ(CCOTH({sign * 1e4, 3.0}), sign);
  }
  EXPECT_EQ(CCOTH(0.0), 1e20);
  EXPECT_EQ(CCOTH({0.0, 1e-20}), 1e20);
  EXPECT_LT(relative(CCOTH({3e-6, 4e-6}), 1.0 / Complex(3e-6, 4e-6)), 2.0 * eps);
}

TEST(Phase, JumpsAtTheNegativeImaginaryAxis) {
  const double pi = 3.141592653589793;
  const struct {
    double x, y, phase;
  } cases[] = {{0.0, -1.0, pi},         {-0.0, -1.0, pi},
               {-1.0, 0.0, 1.5 * pi},   {-1.0, 1e-9, -0.5 * pi + 1e-9},
               {-1.0, -1e-9, 1.5 * pi}, {1.0, 1.0, 0.25 * pi},
               {0.0, 0.0, 0.0},         {1e-25, -1e-25, 0.0},
               {1.1e-25, 0.0, 0.5 * pi}};
  for (const auto& c : cases) EXPECT_NEAR(PHASE2(c.x, c.y), c.phase, 2e-9) << c.x << ' ' << c.y;
  EXPECT_EQ(L1MAG({-3.0, 4.0}), 7.0);
}

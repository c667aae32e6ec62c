#include "kernels/hyperbolic.h"

#include "base/constants.h"

#include <gtest/gtest.h>

using namespace lcp;

namespace {

constexpr double eps = 2.2e-16;

double relative(Complex a, Complex b) { return std::abs(a - b) / std::abs(b); }

} // namespace

TEST(Hyperbolic, AgreesWithTheLibraryOnAllBranches) {
  for (double re : {-700.0, -30.0, -1.5, -1.0, -0.2, 0.0, 0.3, 1.0, 1.0 + 1e-9, 4.0, 29.9}) {
    for (double im : {-9.0, -0.7, 0.1, 1.4, 300.0}) {
      const Complex z(re, im), sinh = std::sinh(z);
      // The symmetric forms lose what the two powers have in common.
      const double limit = 20.0 * eps * (1.0 + 1.0 / std::abs(sinh));
      EXPECT_LT(relative(CSINH(z), sinh), limit) << z;
      EXPECT_LT(relative(CTANH(z) * CCOTH(z), 1.0), 4.0 * eps) << z;
      EXPECT_TRUE(re < -300.0 || relative(CTANH(z), std::tanh(z)) < 20.0 * limit) << z;
    }
  }
  EXPECT_EQ(CSINH({100.0, 1.0}), CSINH({30.0, 1.0})); // the limits of the arguments
  for (const double sign : {1.0, -1.0}) {
    EXPECT_EQ(CTANH({sign * 1e4, 3.0}), sign);
    EXPECT_EQ(CCOTH({sign * 1e4, 3.0}), sign);
  }
  EXPECT_EQ(CCOTH({0.0, 1e-20}), 1e20);
  EXPECT_LT(relative(CCOTH({3e-6, 4e-6}), 1.0 / Complex(3e-6, 4e-6)), 2.0 * eps);
}

TEST(Phase, JumpsAtTheNegativeImaginaryAxis) {
  const double cases[][3] = {{0.0, -1.0, PI},         {-0.0, -1.0, PI},
                             {-1.0, 0.0, 1.5 * PI},   {-1.0, 1e-9, -0.5 * PI + 1e-9},
                             {-1.0, -1e-9, 1.5 * PI}, {1.0, 1.0, 0.25 * PI},
                             {0.0, 0.0, 0.0},         {1e-25, -1e-25, 0.0},
                             {1.1e-25, 0.0, 0.5 * PI}};
  for (const auto& [x, y, phase] : cases) EXPECT_NEAR(PHASE2(x, y), phase, 2e-9) << x << ' ' << y;
}

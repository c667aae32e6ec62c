// Functions of one complex number.
#include "kernels/hyperbolic.h"

#include "base/constants.h"
#include "kernels/bessel_k.h"
#include "support/bessel_reference.h"

#include <gtest/gtest.h>

using namespace lcp;

using Wide = std::complex<long double>;

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

// On the ray of the skin effect and off it. From |x| = 990 on the parts sink one by one.
TEST(BesselK, RatiosOfNumbersWithASmallestPart) {
  KSeries K;
  const auto lifted = [](long double part) { return std::fabs(part) < 1e-307L ? 1e-307L : part; };
  for (const double angle : {PI / 4, 0.1, -PI / 4, 1.5}) {
    for (const double size :
         {1e-3,  0.1,   1.0,   8.0,   19.9,  20.0,  28.0,  35.0,  99.0,  300.0,
          700.0, 990.0, 995.0, 996.0, 996.5, 997.0, 997.5, 998.0, 999.0, 1200.0}) {
      const Complex x = std::polar(size, angle);
      ZBESK(x, K);
      Wide below;
      for (int n = 0; n <= LASTORDER; ++n) {
        const Wide k = Wide(test::scaledK(n, x)) * std::exp(-Wide(x));
        const Wide above(lifted(k.real()), lifted(k.imag()));
        const Wide ratio(n == 0 ? 0.0 : KRATIO(K, n));
        EXPECT_LE(std::abs(ratio * above - below), 1e-14L * std::abs(below)) << x << ' ' << n;
        below = above;
      }
    }
  }
}

// Overflow, where K_n = (n - 1)! / 2 (2 / x)^n, underflow, and what is no argument.
TEST(BesselK, RatiosAtTheEndsOfTheRange) {
  KSeries K;
  const Complex diagonal(1.0, 1.0);
  for (const int n : {2, 3, 20, 50}) {
    for (const double size : {1e-8, 1e-100, 1e-300}) {
      ZBESK(size * diagonal, K);
      const Complex expected = size * diagonal / (2.0 * n - 2.0);
      EXPECT_LT(std::abs(KRATIO(K, n) / expected - 1.0), 1e-14) << size << ' ' << n;
    }
    for (const double size : {1200.0, 1e6, 1e300, 0.0, 1e-310, HUGE_VAL}) {
      ZBESK(size * diagonal, K);
      EXPECT_EQ(KRATIO(K, n) == 1.0, size > 1.0 && size < 1e301) << size;
    }
  }
}

#include "kernels/bessel_k.h"

#include "base/constants.h"
#include "support/bessel_reference.h"

#include <gtest/gtest.h>

using namespace lcp;
using Wide = std::complex<long double>;

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

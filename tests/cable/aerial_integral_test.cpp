#include "cable/aerial_integral.h"

#include "base/constants.h"
#include "cable/complex_root.h"
#include "store/rundata.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace lcp;

namespace {

// The same panels node by node with complex functions. 1000 panels, or ten to a wave.
AerialSums plainSums(double X, double H, double w) {
  const double nodes[][2] = {{0.9061798459, 0.236926885},
                             {0.5384693101, 0.4786286705},
                             {0, 0.5688888889},
                             {-0.5384693101, 0.4786286705},
                             {-0.9061798459, 0.236926885}};
  const Ground& G = RUNDATA.ground;
  const double T = std::log(1000) / H, dt = std::min(T / 1000, 6.28318530718 / (10 * X));
  const double k2 = MU0EPS0 * w * w;
  const Complex G2(k2 - G.GEPSR * k2, MU0 / G.GRHO * w), N2(G.GEPSR, -MU0 / G.GRHO * w / k2);
  AerialSums sum{};
  for (int k = 0; k < std::ceil(T / dt) - 1; ++k) {
    for (const auto& [place, weight] : nodes) {
      const double u = dt * (k + 0.5 + 0.5 * place);
      const Complex s = std::sqrt(u * u + G2), a = weight * dt * std::exp(-H * u) * std::cos(X * u);
      sum.SZ += a / (u + s);
      sum.SQ += a / (s + N2 * u);
    }
  }
  return sum;
}

double distance(const AerialSums& a, const AerialSums& b) {
  return std::max(std::abs(a.SZ - b.SZ) / std::abs(b.SZ), std::abs(a.SQ - b.SQ) / std::abs(b.SQ));
}

} // namespace

// Pairs are new at the first frequency and summed together at the others, and over the second soil
// at the last one again. The two pairs far apart are too many panels to be kept both; they come
// last, so that a store that turns them out shows.
TEST(AerialIntegral, IsTheSameKeptAndAnew) {
  const double pairs[][2] = {{0.01, 20}, {4, 20}, {4, 22}, {3000, 20}, {20e5, 20}, {21e5, 21}};
  const auto sum = [&](int k, double w) { return AERIALSUM(pairs[k][0], pairs[k][1], w); };
  FORGETAERIAL();
  for (const double eps : {1.0, 30.0}) {
    RUNDATA.ground = {};
    RUNDATA.ground.GRHO = 2e4;
    RUNDATA.ground.GEPSR = eps;
    for (const double w : {1.0, 3e3, 6e6}) {
      AerialSums kept[6];
      for (int k = 0; k < (w == 3e3 && eps == 1.0 ? 6 : 4); ++k) {
        kept[k] = sum(k, w);
        const double limit = 1e-12 + 1e-13 * pairs[k][0] / pairs[k][1]; // digits of the phase X u
        EXPECT_LT(distance(kept[k], plainSums(pairs[k][0], pairs[k][1], w)), limit)
            << k << " " << w;
      }
      for (int k = 3; k >= 0; --k) EXPECT_EQ(distance(sum(k, w), kept[k]), 0) << k << " at " << w;
    }
  }
  const AerialSums kept = sum(1, 6e6), far = sum(5, 6e6);
  FORGETAERIAL();
  EXPECT_TRUE(distance(sum(5, 6e6), far) == 0 && distance(sum(1, 6e6), kept) == 0);
}

// All quadrants, the axes, and parts far apart.
TEST(ComplexRoot, IsThePrincipalRoot) {
  const double parts[] = {0, 1e-300, 3e-131, 1e-20, 0.7, 0.7000000000000001, 5e9, 2e130, 1e300};
  for (const double x : parts) {
    for (const double y : parts) {
      for (const Complex z : {Complex(x, y), Complex(-x, y), Complex(x, -y), Complex(-x, -y)}) {
        const Complex wanted = std::sqrt(z), is = ROOT(z);
        EXPECT_DOUBLE_EQ(is.real(), wanted.real()) << z;
        EXPECT_DOUBLE_EQ(is.imag(), wanted.imag()) << z;
      }
    }
  }
}

#include "cable/aerial_integral.h"

#include "base/constants.h"
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

bool same(const AerialSums& a, const AerialSums& b) { return a.SZ == b.SZ && a.SQ == b.SQ; }

} // namespace

// Pairs are new at the first frequency and summed together at the others, and over the second soil
// at the last one again. The two pairs far apart are too many panels to be kept both; they come
// last, so that a store that turns them out shows.
TEST(AerialIntegral, IsTheSameKeptAndAnew) {
  const double pairs[][2] = {{0.01, 20}, {4, 20}, {4, 22}, {3000, 20}, {20e5, 20}, {21e5, 21}};
  FORGETAERIAL();
  for (const double eps : {1.0, 30.0}) {
    RUNDATA.ground = {};
    RUNDATA.ground.GRHO = 2e4;
    RUNDATA.ground.GEPSR = eps;
    for (const double w : {1.0, 3e3, 6e6}) {
      AerialSums kept[6];
      for (int k = 0; k < (w == 3e3 && eps == 1.0 ? 6 : 4); ++k) {
        kept[k] = AERIALSUM(pairs[k][0], pairs[k][1], w);
        const AerialSums plain = plainSums(pairs[k][0], pairs[k][1], w);
        const double limit = 1e-12 + 1e-13 * pairs[k][0] / pairs[k][1]; // digits of the phase X u
        EXPECT_LT(std::abs(kept[k].SZ / plain.SZ - 1.0), limit) << k << " at " << w;
        EXPECT_LT(std::abs(kept[k].SQ / plain.SQ - 1.0), limit) << k << " at " << w;
      }
      for (int k = 3; k >= 0; --k) {
        EXPECT_TRUE(same(AERIALSUM(pairs[k][0], pairs[k][1], w), kept[k])) << k << " at " << w;
      }
    }
  }
  const AerialSums kept = AERIALSUM(4, 20, 6e6), far = AERIALSUM(21e5, 21, 6e6);
  FORGETAERIAL();
  EXPECT_TRUE(same(AERIALSUM(21e5, 21, 6e6), far) && same(AERIALSUM(4, 20, 6e6), kept));
}

// The minimum-phase part that the gain-phase relation takes out, of functions whose magnitude is
// known; whole runs hold the search for delays.
#include "fit/bode_delay.h"

#include "base/constants.h"
#include "support/sampled_functions.h"

#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

struct Taken {
  int step;
  double turn; // CORR w0
};

// A travel time of its own at every step tells the step at which the delay was taken.
Taken taken(const SampleGrid& grid, const ComplexCurve& HM) {
  FreqCurve V;
  for (int k = 1; k <= grid.NS; ++k) V[k] = 1e5 * k;
  const BodeDelay b = BODEDLY(V, HM, grid.NS, grid.w, 1e5, 0.01);
  EXPECT_TRUE(std::isfinite(b.TAU) && std::isfinite(b.CORR));
  const int step = static_cast<int>(std::lround(1 / (b.TAU - b.CORR)));
  return {step, b.CORR * grid.w[step]};
}

} // namespace

TEST(BodeDelay, PowersOfTheFrequencyAndVanishedModes) {
  for (const int NS : {2, 3, 150}) {
    const SampleGrid grid(1, 1e7, NS);
    for (const double n : {0.0, 0.3, 2.5}) {
      const ComplexCurve HM = sampled(grid, [&](Complex s) { return std::pow(s / 10.0, -n); });
      EXPECT_NEAR(taken(grid, HM).turn, -n * PI / 2, 1e-12) << NS;
    }
    taken(grid, sampled(grid, [](Complex s) { return std::exp(-1e4 * std::sqrt(s)); })); // to 0
  }
}

// Skin effect: exp(-a sqrt(s)) has the slope S = -|ln a|/2, which grows as sqrt(w), so that over a
// decade to both sides CORR w0 = S pi/2 + |S|/pi integral of (exp(u/2) - 1) ln coth|u/2| du.
TEST(BodeDelay, SkinEffectIsTakenOutOverADecadeToBothSides) {
  constexpr double INTEGRAL = 0.440848; // by the midpoint rule
  const SampleGrid grid(1, 1e8, 600);
  for (const double a : {0.02, 0.3}) {
    const Taken t =
        taken(grid, sampled(grid, [&](Complex s) { return std::exp(-a * std::sqrt(s)); }));
    const double S = -0.5 * a * std::sqrt(grid.w[t.step] / 2);
    EXPECT_NEAR(t.turn, S * PI / 2 + std::fabs(S) / PI * INTEGRAL, 0.01 * std::fabs(S));
  }
}

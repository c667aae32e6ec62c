// First delays of functions whose phase is known.
#include "fit/bode_delay.h"

#include "base/constants.h"
#include "support/sampled_functions.h"

#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

constexpr double LEN = 1e5; // m

// Phase velocity of a function with the phase -phase(w).
template <class Phase> FreqCurve velocity(const SampleGrid& grid, Phase phase) {
  FreqCurve V;
  for (int k = 1; k <= grid.NS; ++k) V[k] = grid.w[k] * LEN / phase(grid.w[k]);
  return V;
}

// A velocity of its own at every step tells the step at which the delay was taken.
int stepOf(const SampleGrid& grid, const ComplexCurve& HM, double THRESH) {
  FreqCurve V;
  for (int k = 1; k <= grid.NS; ++k) V[k] = k;
  const BodeDelay b = BODEDLY(V, HM, grid.NS, grid.w, 1.0, THRESH);
  return static_cast<int>(std::lround(1 / (b.TAU - b.CORR)));
}

} // namespace

TEST(BodeDelay, PowersOfTheFrequencyGiveTheirDelayExactly) {
  const SampleGrid grid(1, 1e7, 150);
  for (const double n : {0.3, 1.0, 2.5}) {
    for (const double T : {0.0, 3.3e-4}) {
      const auto H = [&](Complex s) { return std::pow(s / 10.0, -n) * std::exp(-s * T); };
      const FreqCurve V = velocity(grid, [&](double w) { return n * PI / 2 + w * T; });
      const BodeDelay b = BODEDLY(V, sampled(grid, H), grid.NS, grid.w, LEN, 0.01);
      const double w0 = grid.w[stepOf(grid, sampled(grid, H), 0.01)];
      EXPECT_NEAR(b.CORR, -n * PI / 2 / w0, 1e-12 / w0);
      EXPECT_NEAR(b.TAU, T, 1e-12 / w0);
    }
  }
}

// Skin effect: exp(-a sqrt(s)) has the slope S = -|ln a|/2, which grows as sqrt(w), so that over a
// decade to both sides CORR w0 = S pi/2 + |S|/pi integral of (exp(u/2) - 1) ln coth|u/2| du.
TEST(BodeDelay, SkinEffectIsTakenOutOverADecadeToBothSides) {
  double integral = 0;
  const int intervals = 40000;
  const double du = 2 * std::log(10.0) / intervals;
  for (int i = 0; i < intervals; ++i) {
    const double u = (i + 0.5) * du - std::log(10.0);
    integral += (std::exp(u / 2) - 1) * -std::log(std::tanh(std::fabs(u) / 2)) * du;
  }
  const SampleGrid grid(1, 1e8, 600);
  for (const double a : {0.02, 0.3}) {
    for (const double T : {0.0, 3.3e-4, 2e-3}) {
      const auto H = [&](Complex s) { return std::exp(-a * std::sqrt(s) - s * T); };
      const FreqCurve V = velocity(grid, [&](double w) { return a * std::sqrt(w / 2) + w * T; });
      const ComplexCurve HM = sampled(grid, H);
      const BodeDelay b = BODEDLY(V, HM, grid.NS, grid.w, LEN, 0.01);
      const int k0 = stepOf(grid, HM, 0.01);
      const double w0 = grid.w[k0];
      const double S = -0.5 * a * std::sqrt(w0 / 2);
      EXPECT_NEAR(b.CORR * w0, S * PI / 2 + std::fabs(S) / PI * integral, 0.01 * std::fabs(S));
      EXPECT_GT(b.TAU, T);
      EXPECT_LT(b.TAU - T, LEN / V[k0] - T); // nearer than the travel time at that frequency
    }
  }
}

TEST(BodeDelay, IsTakenAtTheFirstStepAtOrBelowTheThreshold) {
  const SampleGrid grid(1, 1e4, 41);
  const auto fallsAt = [&](int step) {
    ComplexCurve HM;
    for (int k = 1; k <= grid.NS; ++k) HM[k] = k < step ? 0.9 : 0.01;
    return HM;
  };
  struct Case {
    double threshold;
    int step;
    int taken;
  };
  const Case cases[] = {
      {0.01, 17, 17}, {0.02, 17, 17}, {0.0099, 17, 40}, {0.9, 17, 2},   {0.01, 2, 2},
      {0.01, 1, 2},   {0.01, 3, 3},   {0.01, 40, 40},   {0.01, 41, 40}, {0.01, 42, 40},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(stepOf(grid, fallsAt(c.step), c.threshold), c.taken)
        << c.step << " at threshold " << c.threshold;
  }
}

TEST(BodeDelay, AFunctionWithoutLossKeepsItsTravelTime) {
  const SampleGrid grid(1, 1e4, 50);
  const double T = 2e-4;
  const FreqCurve V = velocity(grid, [&](double w) { return w * T; });
  const ComplexCurve HM = sampled(grid, [&](Complex s) { return std::exp(-s * T); });
  const BodeDelay b = BODEDLY(V, HM, grid.NS, grid.w, LEN, 0.02);
  EXPECT_NEAR(b.CORR, 0, 1e-15);
  EXPECT_NEAR(b.TAU, T, 1e-15);
}

TEST(BodeDelay, VanishedModesAndShortGridsGiveNumbers) {
  for (const int NS : {2, 3, 107}) {
    const SampleGrid grid(1, 1e7, NS);
    const FreqCurve V = velocity(grid, [&](double w) { return w * 1e-3; });
    for (const double a : {0.0, 1e-3, 5.0, 1e4}) { // at the end the last one is exp(-2e7): 0
      const ComplexCurve HM = sampled(grid, [&](Complex s) { return std::exp(-a * std::sqrt(s)); });
      const BodeDelay b = BODEDLY(V, HM, NS, grid.w, LEN, 0.01);
      EXPECT_TRUE(std::isfinite(b.TAU) && std::isfinite(b.CORR)) << NS << " " << a;
    }
  }
}

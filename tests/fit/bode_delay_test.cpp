// First delays of functions whose phase is known.
#include "fit/bode_delay.h"

#include "base/constants.h"
#include "support/sampled_functions.h"

#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

constexpr double LEN = 1e5; // m

// A velocity of its own at every step tells the step at which the delay was taken.
int stepOf(const SampleGrid& grid, const ComplexCurve& HM, double THRESH) {
  FreqCurve V;
  for (int k = 1; k <= grid.NS; ++k) V[k] = k;
  const BodeDelay b = BODEDLY(V, HM, grid.NS, grid.w, 1.0, THRESH);
  return static_cast<int>(std::lround(1 / (b.TAU - b.CORR)));
}

struct Taken {
  BodeDelay b;
  double w0; // where it was taken
};

// The delay of a function of s with the phase -phase(w).
template <class Function, class Phase>
Taken delayOf(const SampleGrid& grid, Function H, Phase phase) {
  FreqCurve V;
  for (int k = 1; k <= grid.NS; ++k) V[k] = grid.w[k] * LEN / phase(grid.w[k]);
  const ComplexCurve HM = sampled(grid, H);
  return {BODEDLY(V, HM, grid.NS, grid.w, LEN, 0.01), grid.w[stepOf(grid, HM, 0.01)]};
}

} // namespace

TEST(BodeDelay, PowersOfTheFrequencyGiveTheirDelayExactly) {
  const SampleGrid grid(1, 1e7, 150);
  for (const double n : {0.0, 0.3, 1.0, 2.5}) { // 0: without loss the travel time stays
    for (const double T : {1e-6, 3.3e-4}) {
      const Taken t = delayOf(
          grid, [&](Complex s) { return std::pow(s / 10.0, -n) * std::exp(-s * T); },
          [&](double w) { return n * PI / 2 + w * T; });
      EXPECT_NEAR(t.b.CORR, -n * PI / 2 / t.w0, 1e-12 / t.w0);
      EXPECT_NEAR(t.b.TAU, T, 1e-12 / t.w0);
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
      const Taken t = delayOf(
          grid, [&](Complex s) { return std::exp(-a * std::sqrt(s) - s * T); },
          [&](double w) { return a * std::sqrt(w / 2) + w * T; });
      const double S = -0.5 * a * std::sqrt(t.w0 / 2);
      EXPECT_NEAR(t.b.CORR * t.w0, S * PI / 2 + std::fabs(S) / PI * integral, 0.01 * std::fabs(S));
      EXPECT_GT(t.b.TAU, T);
      EXPECT_LT(t.b.CORR, 0); // nearer than the travel time at that frequency
    }
  }
}

TEST(BodeDelay, IsTakenAtTheFirstStepAtOrBelowTheThreshold) {
  const SampleGrid grid(1, 1e4, 41);
  const struct {
    double threshold;
    int step, taken;
  } cases[] = {
      {0.01, 17, 17}, {0.02, 17, 17}, {0.0099, 17, 40}, {0.9, 17, 2},   {0.01, 2, 2},
      {0.01, 1, 2},   {0.01, 3, 3},   {0.01, 40, 40},   {0.01, 41, 40}, {0.01, 42, 40},
  };
  for (const auto& c : cases) {
    ComplexCurve HM;
    for (int k = 1; k <= grid.NS; ++k) HM[k] = k < c.step ? 0.9 : 0.01;
    EXPECT_EQ(stepOf(grid, HM, c.threshold), c.taken) << c.step << " at " << c.threshold;
  }
}

TEST(BodeDelay, VanishedModesAndShortGridsGiveNumbers) {
  for (const int NS : {2, 3, 107}) {
    for (const double a : {0.0, 1e-3, 5.0, 1e4}) { // at the end the last one is exp(-2e7): 0
      const BodeDelay b =
          delayOf(
              SampleGrid(1, 1e7, NS), [&](Complex s) { return std::exp(-a * std::sqrt(s)); },
              [](double w) { return w * 1e-3; })
              .b;
      EXPECT_TRUE(std::isfinite(b.TAU) && std::isfinite(b.CORR)) << NS << " " << a;
    }
  }
}

// Delays: the minimum-phase part that the gain-phase relation takes out, of functions whose
// magnitude is known, and the search at its bounds and with its table; that the search finds
// delays, the fits show.
#include "fit/bode_delay.h"

#include "base/constants.h"
#include "fit/delay_search.h"
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
Taken taken(const SampleGrid& grid, const ComplexCurve& HM, double THRESH = 0.01) {
  FreqCurve V;
  for (int k = 1; k <= grid.NS; ++k) V[k] = 1e5 * k;
  const BodeDelay b = BODEDLY(V, HM, grid.NS, grid.w, 1e5, THRESH);
  EXPECT_TRUE(std::isfinite(b.TAU) && std::isfinite(b.CORR));
  const int step = static_cast<int>(std::lround(1 / (b.TAU - b.CORR)));
  return {step, b.CORR * grid.w[step]};
}

constexpr double T = 3.3e-5; // the delay, s

struct Outcome {
  DelaySearch S;
  DelayTable T;
  FitErrors ERRORS;
};

Outcome search(const DelaySearch& start, const DelayTable& table = {}) {
  static const SampleGrid GRID(1e2, 1e6, 100);
  static const Rational H{
      {-2e3, -2e4, {-6e4, 3e4}, {-6e4, -3e4}}, {200, 2e4, {-1e4, -2e4}, {-1e4, 2e4}}, 0, 0, T};
  static const ComplexCurve F = sampled(GRID, H);
  static FunctionFit FIT;
  static PoleTable P;
  Outcome o{start, table, {}};
  startingPoles(P, 3, GRID.w[1], GRID.w[GRID.NS]);
  SEARCHDELAY(o.S, o.T, {GRID.NS, 1, GRID.w, &F, GRID.weight, FLIPUNSTABLE, NOASYMPTOTE}, 3, P, FIT,
              o.ERRORS);
  return o;
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

TEST(BodeDelay, IsTakenAtTheFirstStepAtOrBelowTheThreshold) {
  const SampleGrid grid(1, 1e4, 41);
  const struct {
    double threshold;
    int step, taken;
  } cases[] = {{0.01, 17, 17}, {0.0099, 17, 40}, {0.9, 17, 2},   {0.01, 1, 2},
               {0.01, 3, 3},   {0.01, 40, 40},   {0.01, 41, 40}, {0.01, 42, 40}};
  for (const auto& c : cases) {
    ComplexCurve HM;
    for (int k = 1; k <= grid.NS; ++k) HM[k] = k < c.step ? 0.9 : 0.01;
    EXPECT_EQ(taken(grid, HM, c.threshold).step, c.taken) << c.step << " at " << c.threshold;
  }
}

TEST(DelaySearch, StaysWithinItsBoundsAndAddsItsStepsUp) {
  const Outcome below = search({0.7 * T, 0.15 * T, 1e6, 0.9 * T, 0.6 * T});
  const Outcome above = search({1.5 * T, -0.2 * T, 1e6, 1.6 * T, 1.2 * T});
  EXPECT_EQ(*std::max_element(below.T.tau.data(), below.T.tau.data() + DELAYITERATIONS), 0.9 * T);
  EXPECT_EQ(*std::min_element(above.T.tau.data(), above.T.tau.data() + DELAYITERATIONS), 1.2 * T);
  EXPECT_EQ(below.T.tau[1], 0.7 * T);
  EXPECT_EQ(below.T.tau[DELAYITERATIONS], below.S.tau);
  EXPECT_EQ(below.T.error[DELAYITERATIONS], below.ERRORS.ERRRMS);
  const Outcome free = search({1.02 * T, 0.03 * T, 0, 5 * T, -5 * T, 0.5 * T});
  // no bound was met: the tried delays are the first one and all steps but the last
  EXPECT_NEAR(free.S.stepSum - 0.5 * T, free.S.tau - 1.02 * T + free.S.d, 1e-12 * T);
  // an error compared with 0 is never lower: the first step is turned round and halved
  EXPECT_EQ(free.T.tau[2], 1.02 * T + -0.5 * (0.03 * T));
}

TEST(DelaySearch, BelievesWhatStandsInItsTableButFitsTheLast) {
  for (const int position : {1, 16, DELAYENTRIES}) {
    DelayTable table;
    table.tau[position] = 1.1 * T;
    table.error[position] = 1e-9; // better than any fit: the search goes back to halves of steps
    const Outcome o = search({1.1 * T, 0.02 * T, 1e6, 2 * T, 0.5 * T}, table);
    EXPECT_EQ(o.T.error[1], 1e-9);
    EXPECT_EQ(o.T.tau[3], 1.1 * T + 0.02 * T - 0.01 * T);
    EXPECT_GT(search({1.1 * T, 0, 1e6, 2 * T, 0}, table).T.error[DELAYITERATIONS], 1e-6);
  }
}

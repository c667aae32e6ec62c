// The delay search on functions whose delay is known, at its bounds and with its table.
#include "fit/delay_search.h"

#include "support/sampled_functions.h"

#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

const SampleGrid GRID(1e2, 1e6, 100);
constexpr double T = 3.3e-5;

// Falls to 0.004 within the grid. The steps of a search for its delay end at 0.6 % of it.
const Rational ATTENUATION{{{-2e3, 0}, {-2e4, 0}, {-6e4, 3e4}, {-6e4, -3e4}},
                           {{200, 0}, {2e4, 0}, {-1e4, -2e4}, {-1e4, 2e4}},
                           0,
                           0,
                           T};

struct Outcome {
  DelaySearch S;
  DelayTable T;
  PoleTable POLES;
  FunctionFit FIT;
  FitErrors ERRORS;
};

FitSamples problem(const ComplexCurve& F) {
  return {GRID.NS, 1, GRID.w, &F, GRID.weight, FLIPUNSTABLE, NOASYMPTOTE};
}

Outcome search(const DelaySearch& start, int N, const DelayTable& table = {}) {
  static ComplexCurve F;
  F = sampled(GRID, ATTENUATION);
  static Outcome o;
  o.S = start;
  o.T = table;
  startingPoles(o.POLES, N, GRID.w[1], GRID.w[GRID.NS]);
  SEARCHDELAY(o.S, o.T, problem(F), N, o.POLES, o.FIT, o.ERRORS);
  return o;
}

} // namespace

TEST(DelaySearch, FindsTheDelayOfARationalFunction) {
  for (const double first : {0.9 * T, 0.97 * T, 1.05 * T, 1.15 * T}) {
    for (const double step : {-0.1 * T, 0.05 * T}) {
      const Outcome o = search({first, step, 1e6, 1.2 * T, 0.8 * T}, 4);
      EXPECT_NEAR(o.S.tau, T, 6.5e-3 * T) << first / T << " " << step / T;
      // the better the delay, the better the fit
      EXPECT_LT(o.ERRORS.ERRRMS, 0.05 * o.T.error[1]);
      EXPECT_EQ(o.T.tau[1], first);
      EXPECT_EQ(o.T.tau[DELAYITERATIONS], o.S.tau);
      EXPECT_EQ(o.T.error[DELAYITERATIONS], o.ERRORS.ERRRMS);
    }
  }
}

TEST(DelaySearch, StaysWithinItsBounds) {
  const struct {
    double up, low, first, step, end;
  } cases[] = {{0.9 * T, 0.6 * T, 0.7 * T, 0.15 * T, 0.9 * T},
               {1.6 * T, 1.2 * T, 1.5 * T, -0.2 * T, 1.2 * T}};
  for (const auto& c : cases) {
    const Outcome o = search({c.first, c.step, 1e6, c.up, c.low}, 3);
    for (int it = 1; it <= DELAYITERATIONS; ++it) {
      EXPECT_LE(o.T.tau[it], c.up);
      EXPECT_GE(o.T.tau[it], c.low);
    }
    EXPECT_NEAR(o.S.tau, c.end, 0.02 * T);
  }
}

TEST(DelaySearch, StepsAddUpToTheLastOneNotTried) {
  const Outcome o = search({1.02 * T, 0.03 * T, 0, 5 * T, -5 * T, 0.5 * T}, 4);
  // no bound was met: the tried delays are the first one and all steps but the last
  EXPECT_NEAR(o.S.stepSum - 0.5 * T, o.S.tau - 1.02 * T + o.S.d, 1e-12 * T);
  // an error compared with 0 is never lower: the first step is turned round and halved
  EXPECT_EQ(o.T.tau[2], 1.02 * T + -0.5 * (0.03 * T));
}

TEST(DelaySearch, TakesAKnownDelayFromTheTableButFitsTheLast) {
  // without a step the same delay comes fifteen times: fitted at the first and the last
  const Outcome o = search({T, 0, 1e6, 2 * T, 0}, 3);
  static ComplexCurve bare;
  takeDelayOut(sampled(GRID, ATTENUATION), T, GRID.w, GRID.NS, bare);
  for (int k = 1; k <= GRID.NS; ++k) {
    const Complex s(0, GRID.w[k]);
    ASSERT_LT(std::abs(bare[k] - ATTENUATION(s) * std::exp(s * T)), 1e-12);
  }
  static FunctionFit fit;
  FitErrors errors;
  PoleTable poles;
  startingPoles(poles, 3, GRID.w[1], GRID.w[GRID.NS]);
  VFITPASSES(DELAYPASSES, problem(bare), 3, poles, &fit, errors);
  for (int it = 1; it < DELAYITERATIONS; ++it) EXPECT_EQ(o.T.error[it], errors.ERRRMS);
  VFITPASSES(DELAYPASSES, problem(bare), 3, poles, &fit, errors);
  EXPECT_EQ(o.T.error[DELAYITERATIONS], errors.ERRRMS);
  EXPECT_EQ(o.ERRORS.ERRNORM, errors.ERRNORM);
  for (int m = 1; m <= 3; ++m) EXPECT_EQ(o.POLES[m], poles[m]);
}

TEST(DelaySearch, BelievesWhatStandsInItsTable) {
  for (const int position : {1, 16, DELAYENTRIES}) {
    DelayTable table;
    table.tau[position] = 1.1 * T;
    table.error[position] = 1e-9; // better than any fit: the search goes back to halves of steps
    const Outcome o = search({1.1 * T, 0.02 * T, 1e6, 2 * T, 0.5 * T}, 3, table);
    EXPECT_EQ(o.T.error[1], 1e-9);
    EXPECT_EQ(o.T.tau[2], 1.1 * T + 0.02 * T);
    EXPECT_EQ(o.T.tau[3], o.T.tau[2] - 0.01 * T);
  }
}

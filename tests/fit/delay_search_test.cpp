// The delay search at its bounds and with its table; that it finds delays, the fits show.
#include "fit/delay_search.h"

#include "support/sampled_functions.h"

#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

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

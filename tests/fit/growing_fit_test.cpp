// Fits with a growing pole count: where they stop, what they leave, what they print.
#include "fit/growing_fit.h"

#include "base/console.h"
#include "fit/bode_delay.h"
#include "fit/delay_search.h"
#include "support/child.h"
#include "support/sampled_functions.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

const SampleGrid GRID(1, 1e6, 100);
constexpr double LEN = 1e5;       // m
constexpr double LIGHT = 3.34e-4; // travel time, s

// Surge impedance of a line with resistance and leakage, ohm.
Complex surge(Complex s) { return std::sqrt((1e-5 + s * 1e-6) / (1e-11 + s * 1e-11)); }

// Propagation with skin effect over a lossy conductor and the delay T.
double T = LIGHT;
Complex propagation(Complex s) { return std::exp(-0.02 - 6e-3 * std::sqrt(s) - s * T); }

ComplexCurve F;
FreqCurve V;

void grow(int NMAX, double TARGET, RationalFit& FIT) {
  F = sampled(GRID, surge);
  GROWFIT(GRID.NS, GRID.w, F, GRID.weight, NMAX, TARGET, FIT);
}

double delayFit(int NMAX, double TARGET, RationalFit& FIT, double delay = LIGHT) {
  T = delay;
  F = sampled(GRID, propagation);
  for (int k = 1; k <= GRID.NS; ++k) {
    V[k] = GRID.w[k] * LEN / (6e-3 * std::sqrt(GRID.w[k] / 2) + GRID.w[k] * T);
  }
  return DELAYFIT(GRID.NS, GRID.w, F, V, GRID.weight, LEN, NMAX, TARGET, FIT);
}

// Largest deviation of the fit, with a delay, over the largest magnitude of the function.
double errorOf(const RationalFit& FIT, double TAU) {
  double deviation = 0, peak = 0;
  for (int k = 1; k <= GRID.NS; ++k) {
    const Complex s(0, GRID.w[k]);
    Complex model = FIT.D;
    for (int m = 1; m <= FIT.N; ++m) model += FIT.R[m] / (s - FIT.P[m]);
    deviation = std::max(deviation, std::abs(model * std::exp(-s * TAU) - F[k]));
    peak = std::max(peak, std::abs(F[k]));
  }
  return deviation / peak;
}

} // namespace

TEST(GrowingFit, StopsAtTheFirstCountThatMeetsTheTarget) {
  RationalFit FIT, fewer;
  struct Case {
    double target;
    int least, most;
  };
  for (const Case& c : {Case{1.0, 1, 1}, {0.02, 2, 2}, {1e-4, 3, 4}, {1e-8, 5, 8}}) {
    grow(20, c.target, FIT);
    EXPECT_GE(FIT.N, c.least);
    EXPECT_LE(FIT.N, c.most);
    EXPECT_LE(FIT.ERR, c.target);
    EXPECT_NEAR(errorOf(FIT, 0), FIT.ERR, 1e-12);
    for (int m = 1; m <= FIT.N; ++m) EXPECT_LE(FIT.P[m].real(), 0);
    if (FIT.N == 1) continue;
    grow(FIT.N - 1, c.target, fewer);
    EXPECT_GT(fewer.ERR, c.target);
    EXPECT_EQ(fewer.N, FIT.N - 1);
  }
}

TEST(GrowingFit, StopsAtTheLimitWithWhatItHas) {
  RationalFit FIT;
  for (const auto& [limit, count] : {std::pair{-3, 1}, {0, 1}, {1, 1}, {5, 5}, {13, 13}}) {
    grow(limit, -1.0, FIT);
    EXPECT_EQ(FIT.N, count);
    EXPECT_NEAR(errorOf(FIT, 0), FIT.ERR, 1e-12);
  }
}

TEST(GrowingFit, ALimitAboveTheCapacityCountsAsTheCapacity) {
  const SampleGrid small(1, 1e3, 12);
  const ComplexCurve noise =
      sampled(small, [](Complex s) { return std::sin(s.imag() * s.imag()); });
  RationalFit FIT;
  GROWFIT(small.NS, small.w, noise, small.weight, 250, -1.0, FIT);
  EXPECT_EQ(FIT.N, NPMAX);
}

TEST(GrowingFit, EveryCountStartsAnew) {
  RationalFit FIT;
  grow(7, -1.0, FIT);
  const FitSamples Q = {GRID.NS, 1, GRID.w, &F, GRID.weight, FLIPUNSTABLE, WITHCONSTANT};
  static FunctionFit alone;
  FitErrors errors;
  PoleTable P;
  startingPoles(P, 7, GRID.w[1], GRID.w[GRID.NS]);
  VFITPASSES(3, Q, 7, P, &alone, errors);
  EXPECT_EQ(FIT.ERR, errors.ERRNORM);
  EXPECT_EQ(FIT.D, alone.D);
  for (int m = 1; m <= 7; ++m) {
    EXPECT_EQ(FIT.P[m], P[m]);
    EXPECT_EQ(FIT.R[m], alone.R[m]);
  }
}

TEST(GrowingFit, PrintsErrorAndCount) {
  RationalFit FIT;
  for (const bool delayed : {false, true}) {
    const ChildResult child = runChild([&] {
      if (delayed) {
        delayFit(3, -1.0, FIT);
      } else {
        grow(12, -1.0, FIT);
      }
    });
    if (delayed) {
      delayFit(3, -1.0, FIT);
    } else {
      grow(12, -1.0, FIT);
    }
    EXPECT_EQ(child.console, fmt::format(" {}{:12}\n", FIT.ERR, FIT.N));
  }
}

TEST(GrowingFit, DelayIsFoundNearTheTravelTimeOfLight) {
  RationalFit FIT;
  for (const double target : {0.1, 0.02, 0.005}) {
    const double TAU = delayFit(20, target, FIT);
    EXPECT_LE(FIT.ERR, target);
    EXPECT_LT(FIT.N, 20);
    EXPECT_EQ(FIT.D, 0);
    EXPECT_NEAR(errorOf(FIT, TAU), FIT.ERR, 1e-10);
    EXPECT_NEAR(TAU, LIGHT, 0.03 * LIGHT);
    for (int m = 1; m <= FIT.N; ++m) EXPECT_LE(FIT.P[m].real(), 0);
  }
}

// The outcome is that of one search at the last count: from the first delay, which is taken where
// the function has fallen to the target, with a step of half its correction and an empty table.
TEST(GrowingFit, EveryCountSearchesAnew) {
  RationalFit FIT;
  static FunctionFit alone;
  int atBounds = 0;
  for (const double delay : {LIGHT, 1e-5, 1e-7}) { // short ones meet the bounds
    for (const auto& [limit, target] : {std::pair{1, 0.05}, {2, 0.003}, {3, 1e-4}, {4, 1e-3}}) {
      const double TAU = delayFit(limit, target, FIT, delay);
      EXPECT_EQ(FIT.N, limit);
      const FitSamples Q = {GRID.NS, 1, GRID.w, &F, GRID.weight, FLIPUNSTABLE, NOASYMPTOTE};
      const BodeDelay first = BODEDLY(V, F, GRID.NS, GRID.w, LEN, target);
      DelaySearch S = {first.TAU, first.CORR / 2, 0, 1.2 * first.TAU, 0.8 * first.TAU};
      DelayTable tried;
      FitErrors errors;
      PoleTable P;
      startingPoles(P, limit, GRID.w[1], GRID.w[GRID.NS]);
      SEARCHDELAY(S, tried, Q, limit, P, alone, errors);
      EXPECT_EQ(TAU, S.tau);
      EXPECT_EQ(FIT.ERR, errors.ERRNORM);
      for (int m = 1; m <= limit; ++m) EXPECT_EQ(FIT.R[m], alone.R[m]);
      for (int it = 1; it <= DELAYITERATIONS; ++it) {
        atBounds += tried.tau[it] == S.up || tried.tau[it] == S.low ? 1 : 0;
      }
    }
  }
  EXPECT_GT(atBounds, 0);
}

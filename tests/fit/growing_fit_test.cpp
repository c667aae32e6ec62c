// Fits with a growing pole count: where they stop, what they leave, what they print.
#include "fit/growing_fit.h"

#include "support/console_capture.h"
#include "support/sampled_functions.h"

#include <algorithm>
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

ComplexCurve F;
std::string told; // by the last fit

void grow(int NMAX, double TARGET, RationalFit& FIT) {
  F = sampled(GRID, surge);
  told = consoleOf([&] { GROWFIT(GRID.NS, GRID.w, F, GRID.weight, NMAX, TARGET, FIT); });
}

// Of the propagation with skin effect over a lossy conductor.
double delayFit(int NMAX, double TARGET, RationalFit& FIT) {
  FreqCurve V;
  F = sampled(GRID, [](Complex s) { return std::exp(-0.02 - 6e-3 * std::sqrt(s) - s * LIGHT); });
  for (int k = 1; k <= GRID.NS; ++k) V[k] = LEN / (6e-3 / std::sqrt(2 * GRID.w[k]) + LIGHT);
  double TAU = 0;
  told = consoleOf(
      [&] { TAU = DELAYFIT(GRID.NS, GRID.w, F, V, GRID.weight, LEN, NMAX, TARGET, FIT); });
  return TAU;
}

// The fit and what is printed against the largest deviation over the largest magnitude.
void checkFit(const RationalFit& FIT, double TAU) {
  double deviation = 0, peak = 0;
  for (int k = 1; k <= GRID.NS; ++k) {
    const Complex s(0, GRID.w[k]);
    Complex model = FIT.D;
    for (int m = 1; m <= FIT.N; ++m) model += FIT.R[m] / (s - FIT.P[m]);
    deviation = std::max(deviation, std::abs(model * std::exp(-s * TAU) - F[k]));
    peak = std::max(peak, std::abs(F[k]));
  }
  EXPECT_NEAR(deviation / peak, FIT.ERR, 1e-10);
  for (int m = 1; m <= FIT.N; ++m) EXPECT_LE(FIT.P[m].real(), 0);
  EXPECT_EQ(told, fmt::format(" {}{:12}\n", FIT.ERR, FIT.N));
}

} // namespace

TEST(GrowingFit, StopsAtTheFirstCountThatMeetsTheTarget) {
  RationalFit FIT, fewer;
  for (const double target : {1.0, 0.02, 1e-4, 1e-8}) {
    grow(20, target, FIT);
    EXPECT_LE(FIT.ERR, target);
    EXPECT_LT(FIT.N, 9);
    checkFit(FIT, 0);
    if (FIT.N == 1) continue;
    grow(FIT.N - 1, target, fewer);
    EXPECT_GT(fewer.ERR, target);
    EXPECT_EQ(fewer.N, FIT.N - 1);
    checkFit(fewer, 0);
  }
}

TEST(GrowingFit, LimitsAreFromOneToTheCapacity) {
  const SampleGrid small(1, 1e3, 12);
  const ComplexCurve noise =
      sampled(small, [](Complex s) { return std::sin(s.imag() * s.imag()); });
  RationalFit FIT;
  for (const int limit : {-3, 0, 5, 250}) {
    consoleOf([&] { GROWFIT(small.NS, small.w, noise, small.weight, limit, -1.0, FIT); });
    EXPECT_EQ(FIT.N, std::clamp(limit, 1, NPMAX));
  }
}

TEST(GrowingFit, DelayIsFoundNearTheTravelTimeOfLight) {
  RationalFit FIT;
  for (const double target : {0.1, 0.005, 0.0}) {
    const double TAU = delayFit(6, target, FIT);
    EXPECT_TRUE(FIT.ERR <= target || FIT.N == 6) << FIT.N;
    EXPECT_EQ(FIT.D, 0);
    EXPECT_NEAR(TAU, LIGHT, 0.03 * LIGHT);
    checkFit(FIT, TAU);
  }
}

#include "fit/delay_groups.h"

#include "base/constants.h"
#include "fit/bode_delay.h"
#include "store/rundata.h"
#include "support/console_capture.h"
#include "support/propagation_case.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

constexpr double LENGTH = 1e5;

// A mode with real poles and unit gain: exp(-s delay) product 1 / (1 + s / p).
struct TestMode {
  double delay;
  std::vector<double> poles;
};

// Samples of the modes with the velocities that go with them.
void sampleModes(const std::vector<TestMode>& modes) {
  RUNDATA.run.LINELEN = LENGTH;
  FITMODEL.NC = static_cast<int>(modes.size());
  SecondLoopStore& T = SOLVEDATA.second;
  for (int i = 1; i <= FITMODEL.NC; ++i) {
    const TestMode& mode = modes[static_cast<std::size_t>(i - 1)];
    for (int k = 1; k <= SOLVEDATA.grid.NFUSE; ++k) {
      const double w = SOLVEDATA.grid.WFREQ[k];
      double turn = w * mode.delay;
      Complex H = std::polar(1.0, -turn);
      for (const double p : mode.poles) {
        H /= Complex(1, w / p);
        turn += std::atan(w / p);
      }
      T.HMODE(k, i) = H;
      T.VELOC(k, i) = w * LENGTH / turn;
    }
  }
}

BodeDelay firstDelay(int i) {
  const FrequencyGrid& G = SOLVEDATA.grid;
  return BODEDLY(SOLVEDATA.second.VELOC.curve(i), SOLVEDATA.second.HMODE.curve(i), G.NFUSE, G.WFREQ,
                 LENGTH, 0.01);
}

bool attempt(double target, int limit) {
  bool changed = false;
  consoleOf([&] { changed = HMODEFIT(target, limit); });
  return changed;
}

} // namespace

TEST(DelayGroups, AreAnchoredByTheirFirstMode) {
  const double tol = 0.25;
  const struct {
    std::vector<double> tau;
    std::vector<int> group;
  } cases[] = {
      {{1}, {1}},
      {{1, 1.25}, {1, 1}},                                // exactly the tolerance
      {{1, std::nextafter(1.25, 2)}, {1, 2}},             // just above
      {{1, 1.2, 1.3, 1.4, 1.5, 1.6}, {1, 1, 2, 2, 2, 3}}, // counted from the anchor, not the last
      {{-0.25, 0, 0.25, 0.5}, {1, 1, 2, 2}},
  };
  for (const auto& C : cases) {
    ModeReals tau;
    ModeInts group;
    const int n = static_cast<int>(C.tau.size());
    std::copy(C.tau.begin(), C.tau.end(), tau.data());
    EXPECT_EQ(assignGroups(tau, n, tol, group), C.group.back());
    EXPECT_EQ(std::vector<int>(group.data(), group.data() + n), C.group);
  }
}

// 10 degrees at 1e6 rad/s are 0.175 us.
TEST(DelayGroups, ModesWithinTenDegreesShareADelay) {
  laySampleGrid(100, 1, 1e6);
  const std::vector<double> poles = {2e4, 3e5};
  sampleModes({{4e-4, {1e4}}, {3e-4 + 1.7e-7, poles}, {3e-4, poles}, {3e-4 + 1.8e-7, poles}});
  FITMODEL.TAU.fill(7.0);
  FORMGROUPS();
  EXPECT_EQ(FITMODEL.NGROUP, 3);
  EXPECT_EQ(FITMODEL.TAU[1], firstDelay(3).TAU); // the smallest
  EXPECT_EQ(FITMODEL.TAU[2], firstDelay(4).TAU);
  EXPECT_EQ(FITMODEL.TAU[3], firstDelay(1).TAU);
  for (int g = 4; g <= NGMAX; ++g) EXPECT_EQ(FITMODEL.TAU[g], 0.0);
  for (int g = 1; g <= 3; ++g) EXPECT_EQ(FITMODEL.NH[g], 0);
}

// Two modes with opposite parts of one pole: their mean has the other pole alone.
TEST(DelayGroups, AGroupIsFittedByTheMeanOfItsModes) {
  laySampleGrid(100, 1, 1e6);
  sampleModes({{3e-4, {1e4}}, {3e-4, {1e4}}});
  for (int k = 1; k <= 100; ++k) {
    const Complex s(0, SOLVEDATA.grid.WFREQ[k]);
    const Complex part = 0.2 * std::exp(-s * 3e-4) * s / (s + 300.0);
    SOLVEDATA.second.HMODE(k, 1) += part;
    SOLVEDATA.second.HMODE(k, 2) -= part;
    SOLVEDATA.second.VELOC(k, 1) = SOLVEDATA.second.VELOC(k, 2) = LENGTH / 3e-4;
  }
  FORMGROUPS();
  ASSERT_EQ(FITMODEL.NGROUP, 1);
  attempt(0.02, 20);
  for (int m = 1; m <= FITMODEL.NH[1]; ++m) EXPECT_LT(FITMODEL.HPOLE[1][m].real(), -2000);
  const double e = std::abs(FITMODEL.HPOLE[1][1] + 1e4);
  EXPECT_LT(e, 2000) << FITMODEL.HPOLE[1][1];
}

TEST(DelayGroups, GrowOnlyWhileTheirErrorIsAboveTheTarget) {
  laySampleGrid(100, 1, 1e6);
  sampleModes({{3e-4, {2e4}}, {4e-4, {30, 2e3, 9e4}}});
  FORMGROUPS();
  ASSERT_EQ(FITMODEL.NGROUP, 2);
  EXPECT_TRUE(attempt(0.25, 20));
  const int second = FITMODEL.NH[2];
  const double tau = FITMODEL.TAU[1];
  const PoleTable poles = FITMODEL.HPOLE[1];
  EXPECT_FALSE(attempt(0.25, 20)); // the target is met: nothing moves
  EXPECT_EQ(FITMODEL.TAU[1], tau);
  EXPECT_EQ(FITMODEL.HPOLE[1].entries, poles.entries);
  EXPECT_TRUE(attempt(1e-9, second + 3));
  EXPECT_EQ(FITMODEL.NH[2], second + 3); // out of reach: stops at the limit
  EXPECT_FALSE(attempt(1e-12, second + 3));
  EXPECT_FALSE(groupsCanGrow(second + 3) && FITMODEL.NH[1] == second + 3);
  EXPECT_TRUE(groupsCanGrow(second + 4));
  EXPECT_EQ(badPoles(), 0);
}

TEST(DelayGroups, DelaysStayWithinAFifthOfWhereTheAttemptBegan) {
  laySampleGrid(100, 1, 1e6);
  sampleModes({{3e-4, {2e4}}, {5e-4, {2e3, 1e5}}, {2e-5, {5e5}}});
  FORMGROUPS();
  for (const double target : {0.25, 0.01, 0.0003}) {
    const GroupReals before = FITMODEL.TAU;
    attempt(target, 12);
    for (int g = 1; g <= FITMODEL.NGROUP; ++g) {
      EXPECT_GE(FITMODEL.TAU[g], 0.8 * before[g]);
      EXPECT_LE(FITMODEL.TAU[g], 1.2 * before[g]);
    }
  }
  EXPECT_EQ(badPoles(), 0);
}

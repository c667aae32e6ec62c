// Delays from the gain-phase relation, delay groups and the fit of the propagation function.
//
// The magnitudes are known, and the modes are rational functions with delays.
#include "base/constants.h"
#include "fit/bode_delay.h"
#include "fit/delay_groups.h"
#include "fit/fit_driver.h"
#include "fit/propagation_fit.h"
#include "store/rundata.h"
#include "store/solvedata.h"
#include "support/console_capture.h"
#include "support/propagation_case.h"
#include "support/sampled_functions.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

struct Taken {
  int step;
  double turn; // CORR w0
};

// A different travel time at every step identifies the step at which the delay was taken.
Taken taken(const SampleGrid& grid, const ComplexCurve& HM) {
  FreqCurve V;
  for (int k = 1; k <= grid.NS; ++k) V[k] = 1e5 * k;
  const BodeDelay b = BODEDLY(V, HM, grid.NS, grid.w, 1e5, 0.01);
  EXPECT_TRUE(std::isfinite(b.TAU) && std::isfinite(b.CORR));
  const int step = static_cast<int>(std::lround(1 / (b.TAU - b.CORR)));
  return {step, b.CORR * grid.w[step]};
}

constexpr double LENGTH = 9e4;

// A mode with real poles and unit gain: exp(-s delay) product 1 / (1 + s / p).
struct TestMode {
  double delay;
  std::vector<double> poles;

  Complex at(Complex s) const {
    Complex H = std::exp(-s * delay);
    for (const double p : poles) H /= 1.0 + s / p;
    return H;
  }
};

// Sets samples of the modes and the corresponding velocities.
void poseModes(const std::vector<TestMode>& modes) {
  laySampleGrid(100, 1, 1e6);
  RUNDATA.run.LINELEN = LENGTH;
  RUNDATA.line.NC = FITMODEL.NC = static_cast<int>(modes.size());
  for (int i = 1; i <= FITMODEL.NC; ++i) {
    const TestMode& mode = modes[static_cast<std::size_t>(i - 1)];
    for (int k = 1; k <= SOLVEDATA.grid.NFUSE; ++k) {
      const double w = SOLVEDATA.grid.WFREQ[k];
      double turn = w * mode.delay;
      for (const double p : mode.poles) turn += std::atan(w / p);
      SOLVEDATA.second.HMODE(k, i) = mode.at(Complex(0, w));
      SOLVEDATA.second.VELOC(k, i) = w * LENGTH / turn;
    }
  }
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

// 10 degrees at 1e6 rad/s are 0.175 us, counted from the first mode of a group.
TEST(DelayGroups, ModesWithinTenDegreesShareTheSmallestDelay) {
  std::vector<TestMode> modes{{4e-4, {1e4}}};
  for (const double more : {1.7e-7, 0.0, 1.8e-7, 3.5e-7})
    modes.push_back({3e-4 + more, {2e4, 3e5}});
  poseModes(modes);
  FITMODEL.TAU.fill(7.0);
  FORMGROUPS();
  EXPECT_EQ(FITMODEL.NGROUP, 3);
  const FrequencyGrid& G = SOLVEDATA.grid;
  const SecondLoopStore& T = SOLVEDATA.second;
  for (int g = 1; g <= NGMAX; ++g) {
    const int i = g == 1 ? 3 : (g == 2 ? 4 : 1); // the first mode of the group
    const double first =
        BODEDLY(T.VELOC.curve(i), T.HMODE.curve(i), G.NFUSE, G.WFREQ, LENGTH, 0.01).TAU;
    EXPECT_EQ(FITMODEL.TAU[g], g <= 3 ? first : 0.0);
  }
}

TEST(PropagationFit, DelaysAboveASecondAreTold) {
  FITMODEL.NGROUP = 2;
  FITMODEL.TAU[1] = 0.99;
  FITMODEL.TAU[2] = 1.01;
  const std::string told = consoleOf([] { CHECKDELAYS(); });
  EXPECT_EQ(told.find("(0.99 s"), std::string::npos);
  EXPECT_NE(told.find("*WARNING*: The travel time (1.01 s )"), std::string::npos) << told;
}

// Delay groups and the fit of the propagation function, on modes that are rational functions
// with delays.
#include "fit/propagation_fit.h"

#include "fit/bode_delay.h"
#include "fit/delay_groups.h"
#include "store/rundata.h"
#include "store/solvedata.h"
#include "support/console_capture.h"
#include "support/propagation_case.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

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

// Samples of the modes and the velocities that go with them.
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

const std::vector<TestMode> SLOWANDFAST = {{4e-4, {50, 3e4}}, {3e-4, {4e3, 2e5}}};

// The two modes through a constant transformation: H = T diag(h1, h2) T^-1.
Complex twoModes(int r, int c, Complex s) {
  const double T[2][2] = {{1, 0.4}, {-0.3, 1}}; // of determinant 1.12
  const double I[2][2] = {{1 / 1.12, -0.4 / 1.12}, {0.3 / 1.12, 1 / 1.12}};
  return T[r - 1][0] * SLOWANDFAST[1].at(s) * I[0][c - 1] +
         T[r - 1][1] * SLOWANDFAST[0].at(s) * I[1][c - 1];
}

// Fits them; the console shows the tables, which whole runs hold.
void fitTwoModes(const PropagationWish& wish, bool vanished = false) {
  poseModes(SLOWANDFAST);
  sampleH(twoModes);
  if (vanished) SOLVEDATA.second.HMODE.curve(1) = {};
  consoleOf([&] { HFIT(wish); });
}

} // namespace

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

TEST(PropagationFit, MeetsTheErrorAskedForAlsoBetweenTheSamples) {
  fitTwoModes({0.05, 20, 100, 0});
  EXPECT_EQ(FITMODEL.NGROUP, 2);
  EXPECT_LE(measureFit().largest, 0.0005);
  EXPECT_NEAR(FITMODEL.TAU[1], 3e-4, 0.02 * 3e-4);
  EXPECT_NEAR(FITMODEL.TAU[2], 4e-4, 0.02 * 4e-4);
  for (int i = 0; i < 284; ++i) {
    const double w = 1.3 * std::pow(1.21, i / 4);
    const int r = 1 + i % 2, c = 1 + i / 2 % 2;
    const Complex H = twoModes(r, c, Complex(0, w));
    EXPECT_LT(std::abs(Complex(modelOfH(r, c, Wide(0, w))) - H), 0.001) << w;
  }
}

// A mode that has vanished is fitted exactly and takes no more than a pole.
TEST(PropagationFit, EndsAtThePoleLimitWhenTheErrorIsOutOfReach) {
  for (const int limit : {3, 0, -1, 4}) {
    fitTwoModes({0, limit, 1e9, 0}, limit == 4);
    const auto [least, most] = std::minmax(FITMODEL.NH[1], FITMODEL.NH[2]);
    EXPECT_EQ(least, limit == 4 ? 1 : std::max(limit, 0));
    EXPECT_EQ(most, std::max(limit, 0));
  }
  RealMatrix HDC{}; // the values at s = 0 are met behind the reduction
  HDC(1, 1) = HDC(2, 2) = 1;
  fitTwoModes({30, 7, 0.2, 2, &HDC});
  EXPECT_LT(dcDeviation(HDC), 1e-9);
}

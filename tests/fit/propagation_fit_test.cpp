#include "fit/propagation_fit.h"

#include "base/constants.h"
#include "modal/second_loop.h"
#include "store/rundata.h"
#include "store/solvedata.h"
#include "support/child.h"
#include "support/console_capture.h"
#include "support/description.h"
#include "support/propagation_case.h"
#include "support/solve.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

const std::string MODEL =
    phaseModel("Weighting Factor 1: 1\nWeighting Factor 2: 1000\nWeighting Factor 3: 1\n");

void solveLine(const std::string& body, double length) {
  solveBothLoops(body, length);
  formFitWeights();
}

// Two modes through a constant transformation: H = T diag(h1, h2) T^-1 of rational h with delays.
constexpr double DELAY1 = 3e-4;
constexpr double DELAY2 = 4e-4;

Complex mode1(Complex s) { return std::exp(-s * DELAY1) / ((1.0 + s / 4e3) * (1.0 + s / 2e5)); }
Complex mode2(Complex s) { return std::exp(-s * DELAY2) / ((1.0 + s / 50.0) * (1.0 + s / 3e4)); }

Complex twoModes(int r, int c, Complex s) {
  const double T[2][2] = {{1, 0.4}, {-0.3, 1}}; // of determinant 1.12
  const double I[2][2] = {{1 / 1.12, -0.4 / 1.12}, {0.3 / 1.12, 1 / 1.12}};
  return T[r - 1][0] * mode1(s) * I[0][c - 1] + T[r - 1][1] * mode2(s) * I[1][c - 1];
}

void poseTwoModes() {
  laySampleGrid(120, 1, 1e6);
  RUNDATA.run.LINELEN = 9e4;
  setGroups(2, {});
  sampleH(twoModes);
  SecondLoopStore& T = SOLVEDATA.second;
  for (int k = 1; k <= SOLVEDATA.grid.NFUSE; ++k) {
    const double w = SOLVEDATA.grid.WFREQ[k];
    const double turn1 = w * DELAY1 + std::atan(w / 4e3) + std::atan(w / 2e5);
    const double turn2 = w * DELAY2 + std::atan(w / 50) + std::atan(w / 3e4);
    T.HMODE(k, 1) = mode2(Complex(0, w)); // the slower one first
    T.HMODE(k, 2) = mode1(Complex(0, w));
    T.VELOC(k, 1) = w * 9e4 / turn2;
    T.VELOC(k, 2) = w * 9e4 / turn1;
  }
}

RealMatrix unitAtDc() {
  RealMatrix H{};
  H(1, 1) = H(2, 2) = 1;
  return H;
}

// Fits, and returns what the console shows.
std::string fitted(const PropagationWish& wish) {
  return consoleOf([&] { HFIT(wish); });
}

} // namespace

TEST(PropagationFit, MeetsTheErrorAskedForAlsoBetweenTheSamples) {
  poseTwoModes();
  fitted({0.05, 20, 100, 0});
  EXPECT_EQ(FITMODEL.NGROUP, 2);
  EXPECT_LE(measureFit().largest, 0.0005);
  EXPECT_EQ(badPoles(), 0);
  EXPECT_NEAR(FITMODEL.TAU[1], DELAY1, 0.02 * DELAY1);
  EXPECT_NEAR(FITMODEL.TAU[2], DELAY2, 0.02 * DELAY2);
  for (int step = 0; step < 71; ++step) {
    const double w = 1.3 * std::pow(1.21, step);
    for (int r = 1; r <= 2; ++r) {
      for (int c = 1; c <= 2; ++c) {
        const Complex M(modelOfH(r, c, Wide(0, w)));
        EXPECT_LT(std::abs(M - twoModes(r, c, Complex(0, w))), 0.001);
      }
    }
  }
}

TEST(PropagationFit, EndsAtThePoleLimitWhenTheErrorIsOutOfReach) {
  for (const int limit : {1, 3, 0, -1}) {
    poseTwoModes();
    fitted({1e-9, limit, 1e9, 0});
    for (int g = 1; g <= 2; ++g) EXPECT_EQ(FITMODEL.NH[g], std::max(limit, 0));
  }
}

// A mode that has vanished is fitted exactly and takes no more poles; the others go to the limit.
TEST(PropagationFit, EndsWhenAGroupHasNoErrorLeft) {
  poseTwoModes();
  for (int k = 1; k <= SOLVEDATA.grid.NFUSE; ++k) SOLVEDATA.second.HMODE(k, 1) = 0;
  fitted({0, 4, 1e9, 0});
  EXPECT_EQ(FITMODEL.NGROUP, 2);
  EXPECT_EQ(std::min(FITMODEL.NH[1], FITMODEL.NH[2]), 1);
  EXPECT_EQ(std::max(FITMODEL.NH[1], FITMODEL.NH[2]), 4);
}

TEST(PropagationFit, CorrectsTheModelAtZeroFrequency) {
  const RealMatrix HDC = unitAtDc();
  for (const int type : {1, 2}) {
    for (const double ratio : {100.0, 0.2}) {
      poseTwoModes();
      fitted({1, 20, ratio, 0});
      const int poles = FITMODEL.NH[1];
      poseTwoModes();
      fitted({1, 20, ratio, type, &HDC});
      EXPECT_LT(dcDeviation(HDC), 1e-9);
      const bool extra = type == 2 || FITMODEL.HPOLE[1][1].imag() != 0 || poles == 0;
      EXPECT_EQ(FITMODEL.NH[1], poles + (extra ? 1 : 0));
      EXPECT_EQ(badPoles(), 0);
    }
  }
}

TEST(PropagationFit, FitsLines) {
  const std::string bodies[] = {singleCircuit(MODEL), singleCircuit(MODEL, "Transposed: 1\n"),
                                doubleCircuit(MODEL), manyCircuits(2, MODEL)};
  for (const std::string& body : bodies) {
    for (const double length : {1e3, 1e5, 5e5}) {
      solveLine(body, length);
      fitted({2, 20, 100, 0});
      const MeasuredFit fit = measureFit();
      EXPECT_LE(fit.largest, 0.02);
      EXPECT_LE(fit.ratio, 110);
      EXPECT_EQ(badPoles(), 0);
      for (int g = 1; g <= FITMODEL.NGROUP; ++g) {
        EXPECT_GT(FITMODEL.TAU[g], 0.99 * length / LIGHTSPEED);
        EXPECT_LT(FITMODEL.TAU[g], 2 * length / LIGHTSPEED);
      }
    }
  }
}

// All tables of a run with reduction and correction: blanks and widths, numbers of the last table
// from the model. In the form @ stands for a digit or the blank before one.
TEST(PropagationFit, PrintsItsTables) {
  const RealMatrix HDC = unitAtDc();
  poseTwoModes();
  const std::string console = fitted({30, 7, 0.2, 2, &HDC});
  const MeasuredFit measured = measureFit();
  const std::string rule = " " + std::string(68, '-');
  const std::string hphase =
      lines({" Hphase:      Maximum           Maximum       Maximum",
             "              Fitting Error     RMS Error     Residue/Pole Ratio",
             "              --------------    ----------    ------------------",
             "               @@@@.@@@@ %     @@@@.@@@@ %       @@@@@@@@.@@"});
  const std::string form =
      lines({" Fitting Propagation Function H:", " " + std::string(68, '='),
             " Maximum Fitting Error Requested:                           30.0000 %",
             " Maximum Number of Poles (per delay group):                       7", "", rule,
             " Attempt #  1                               Target error:   25.0000 %", rule,
             " Hmode:       Delay      Maximum          Number      Time",
             "              Group #    Fitting Error    of Poles    Delay",
             "              -------    -------------    --------    -----",
             "                 1       @@@@.@@@@@ %       @@       @@@.@@@@@@ ms",
             "                 2       @@@@.@@@@@ %       @@       @@@.@@@@@@ ms", ""}) +
      hphase +
      lines({rule, " Removing Large Residue/Pole Ratios (Model Order Reduction)", rule,
             "              Delay      Number", "              Group #    of Poles",
             "              -------    --------", "                 1       @@",
             "                 2       @@", "", ""}) +
      hphase +
      lines({"", " Applying DC Correction", rule, "", "",
             " Final Fit:   Maximum        Maximum      Number      Adjusted",
             "              Fitting Error  RMS Error    of Poles    Time Delays",
             "              -------------  ---------    --------    -----------",
             fmt::format("             {:10.5f} % {:10.5f} %     {:3}       {:10.6f} ms",
                         100 * measured.largest, 100 * measured.rms, FITMODEL.NH[1],
                         1000 * FITMODEL.TAU[1]),
             fmt::format("{:44}{:2}       {:10.6f} ms", "", FITMODEL.NH[2], 1000 * FITMODEL.TAU[2]),
             "", "                           Maximum Residue/Pole Ratio:  0.@@@@@@@E+@@", "",
             rule});
  ASSERT_EQ(console.size(), form.size()) << console;
  for (std::size_t i = 0; i < form.size(); ++i) {
    const bool digit = console[i] == ' ' || (console[i] >= '0' && console[i] <= '9');
    ASSERT_TRUE(form[i] == '@' ? digit : form[i] == console[i]) << console.substr(0, i);
  }
}

// Fits of the option "Improved Fits", on lines and on artificial functions.
//
// They must meet what the default fits miss. Models are evaluated here from their poles and
// residues.
#include "base/constants.h"
#include "fit/dc_pole.h"
#include "fit/dc_values.h"
#include "fit/fit_driver.h"
#include "fit/mode_model.h"
#include "improved/fits/between_points.h"
#include "improved/fits/mode_fits.h"
#include "improved/fits/propagation_fits.h"
#include "improved/fits/settled_fit.h"
#include "improved/fits/smooth_constants.h"
#include "modal/line_constants.h"
#include "modal/second_loop.h"
#include "run/methods.h"
#include "store/rundata.h"
#include "support/console_capture.h"
#include "support/propagation_case.h"
#include "support/solve.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <functional>
#include <gtest/gtest.h>
#include <string>

using namespace lcp;
using namespace lcp::test;

namespace {

const std::string LEAK = "ShuntConductance: 1e-11\n"; // DC values need one
const std::string IMPROVED = "Numerical Options\n{\nImproved Fits : 1\n}\n";

std::string phaseFitOf(const std::string& body, double length) {
  solveBothLoops(body, length);
  formFitWeights();
  RUNDATA.run.WARNFLAG = false;
  return consoleOf([] { runAdmittanceFit(), runPropagationFit(); });
}

bool has(const std::string& text, const std::string& words) {
  return text.find(words) != std::string::npos;
}

// The first number after the last occurrence of these words.
double numberBehind(const std::string& text, const std::string& words) {
  const std::size_t at = text.rfind(words) + words.size();
  return std::stod(text.substr(text.find_first_of("0123456789", at)));
}

Complex partial(const PoleTable& P, const PoleTable& R, int N, Complex s) {
  Complex sum = 0;
  for (int m = 1; m <= N; ++m) sum += R[m] / (s - P[m]);
  return sum;
}

// Deviation of the model of Yc from its samples, in percent, at the points and between them.
double measuredYc() {
  double most = 0, peak = 0;
  const auto look = [&](double w, const CurveMatrix<Complex, MAXFREQ>& F, int k) {
    for (int r = 1; r <= FITMODEL.NC; ++r) {
      for (int c = 1; c <= FITMODEL.NC; ++c) {
        const Complex model = FITMODEL.YD(r, c) + partial(FITMODEL.YPOLE, FITMODEL.YRES(r, c),
                                                          FITMODEL.NPY, Complex(0, w));
        most = std::max(most, std::abs(model - F(k, r, c)));
        peak = std::max(peak, std::abs(F(k, r, c)));
      }
    }
  };
  for (int k = 1; k <= SOLVEDATA.grid.NFUSE; ++k)
    look(SOLVEDATA.grid.WFREQ[k], SOLVEDATA.second.YCST, k);
  for (int k = 1; k <= BETWEEN.NB; ++k) look(BETWEEN.WFREQ[k], BETWEEN.YC, k);
  return 100 * most / peak;
}

// The functions of a test at the points of a grid and half way between them.
struct TestFunction {
  ComplexCurve points, middles;
  FreqCurve W;
  int NB = 0;

  TestFunction(int NS, const std::function<Complex(Complex)>& F) {
    laySampleGrid(NS, 1, 1e6);
    const FrequencyGrid& G = SOLVEDATA.grid;
    for (int k = 1; k <= NS; ++k) points[k] = F(Complex(0, G.WFREQ[k]));
    for (int k = 1; k < NS; ++k) {
      W[++NB] = std::sqrt(G.WFREQ[k] * G.WFREQ[k + 1]);
      middles[k] = F(Complex(0, W[NB]));
    }
  }
  FitSamples samples() const {
    const FrequencyGrid& G = SOLVEDATA.grid;
    return {G.NFUSE, 1, G.WFREQ, &points, G.WFIT, FLIPUNSTABLE, WITHCONSTANT};
  }
  RationalFit grown(double target, bool between) const {
    static RationalFit fit;
    consoleOf([&] { GROWSETTLED(samples(), {between ? NB : 0, W, &middles}, 20, target, fit); });
    return fit;
  }
};

} // namespace

TEST(ImprovedFits, ReductionTakesOutNoPoleThatHNeeds) {
  const std::string keys = "Maximum Residue/Pole Ratio Tolerance: 0.3\n" + EVENWEIGHTS;
  phaseFitOf(singleCircuit(phaseModel(keys)), 1e5);
  EXPECT_GT(measureFit().largest, 0.1); // although 2 % was requested
  const std::string console = phaseFitOf(singleCircuit(phaseModel(keys) + IMPROVED), 1e5);
  EXPECT_LE(measureFit().largest, 0.02);
  EXPECT_GT(measureFit().ratio, 0.3);
  EXPECT_TRUE(has(console, "stay above 0.3: H needs their Poles"));
  EXPECT_TRUE(RUNDATA.run.WARNFLAG);
}

TEST(ImprovedFits, PrintedErrorIsThatOfTheModelWithItsCorrection) {
  static RealMatrix YDC, HDC;
  const std::string keys = "DC Correction Type: 2\nMaximum Fitting Error (%) for Surge "
                           "Admittance: 0.2\nMaximum Fitting Error (%) for Attenuation "
                           "Constant: 0.2\n" +
                           EVENWEIGHTS;
  const std::string heading = "--------------   --------\n";
  std::string console = phaseFitOf(singleCircuit(phaseModel(keys), LEAK), 1e4);
  BETWEEN.NB = 0; // at the points alone the default exceeds what it prints and what was requested
  EXPECT_GT(measuredYc(), 0.23);
  EXPECT_LT(numberBehind(console, heading), 0.2);
  console = phaseFitOf(singleCircuit(phaseModel(keys) + IMPROVED, LEAK), 1e4);
  EXPECT_NEAR(measuredYc(), numberBehind(console, heading), 6e-5);
  EXPECT_LE(measuredYc(), 0.2);
  EXPECT_LE(100 * measureFit().largest, 0.2);
  DCVALUES(YDC, HDC);
  EXPECT_LT(dcDeviation(HDC), 1e-9);
  EXPECT_FALSE(RUNDATA.run.WARNFLAG);
  for (int i = 1; i <= 3; ++i) HDC(i, i) = 1e10; // no pole below the band can lead there
  PropagationWish wish{0.2, 20, 100.0, DCEXTRAPOLE, &HDC};
  console = consoleOf([&] { settlePropagation(wish); });
  EXPECT_TRUE(has(console, "H stays without its DC Correction"));
  EXPECT_LE(100 * measureFit().largest, 0.2);
  EXPECT_TRUE(RUNDATA.run.WARNFLAG);
}

// A band that begins far above the frequencies at which Yc nears its DC value.
TEST(ImprovedFits, ACorrectionThatSpoilsYcBehindTheFitIsMadeInIt) {
  static RealMatrix YDC, HDC;
  const std::string keys = "DC Correction Type: 2\nCurve Fitting Start Frequency: 1000\n"
                           "Maximum Fitting Error (%) for Surge Admittance: 0.2\n" +
                           EVENWEIGHTS;
  phaseFitOf(singleCircuit(phaseModel(keys) + IMPROVED, LEAK), 1e4);
  EXPECT_LE(measuredYc(), 0.2);
  DCVALUES(YDC, HDC);
  for (int r = 1; r <= 3; ++r) {
    const Complex atZero =
        FITMODEL.YD(r, 1) + partial(FITMODEL.YPOLE, FITMODEL.YRES(r, 1), FITMODEL.NPY, 0);
    EXPECT_NEAR(atZero.real(), YDC(r, 1), 1e-9 * YDC(1, 1));
  }
}

TEST(ImprovedFits, YcAndHHaveLimitsOfTheirOwn) {
  for (const auto& [Y, H] : {std::pair{0.3, 3.0}, {3.0, 0.3}}) {
    for (const std::string& improved : {std::string(), IMPROVED}) {
      const std::string keys =
          fmt::format("Maximum Fitting Error (%) for Surge Admittance: {}\n"
                      "Maximum Fitting Error (%) for Attenuation Constant: {}\n",
                      Y, H);
      BETWEEN.NB = 0; // the default has no points between those of its grid
      phaseFitOf(singleCircuit(phaseModel(keys + EVENWEIGHTS) + improved), 1e4);
      const double largestH = 100 * measureFit().largest;
      EXPECT_EQ(measuredYc() <= 0.4, Y < 1) << measuredYc(); // between the points a little more
      EXPECT_EQ(largestH <= 0.3, H < 1) << largestH;
    }
  }
}

// A tenth of the lowest frequency, or half a decade below the slowest pole of the fit.
TEST(ImprovedFits, ThePoleOfTheCorrectionLiesBelowTheFit) {
  SOLVEDATA.grid.WFREQ[1] = 3;
  for (const auto& [slowest, pole] : {std::pair{100.0, -0.3}, {0.5, -0.5 / std::sqrt(10)}})
    EXPECT_NEAR(dcPole(slowest), pole, 1e-6);
}

// A resonance of 1 % width between two points causes a deviation of 5 % at them.
TEST(ImprovedFits, FitsGoodOnlyAtTheirPointsGrowOn) {
  const double b = std::sqrt(std::pow(10.0, 6 * 19.0 / 39) * std::pow(10.0, 6 * 20.0 / 39));
  const Complex p(-0.01 * b, b);
  const TestFunction F(40, [&](Complex s) {
    return 1.0 / (1.0 + s / 100.0) + 0.01 * b / (s - p) + 0.01 * b / (s - std::conj(p));
  });
  EXPECT_LT(F.grown(0.1, false).N, 3);
  const RationalFit fit = F.grown(0.1, true);
  EXPECT_EQ(fit.N, 3);
  EXPECT_LT(std::abs(fit.D + partial(fit.P, fit.R, fit.N, Complex(0, b)) - F.middles[20]), 0.1);
}

TEST(ImprovedFits, ValuesBetweenArePointsOfTheGridTwiceAsDense) {
  const std::string increments = "Total Number of Frequency Increments: ";
  solveBothLoops(singleCircuit(modeModel(increments + "100\n")), 1e4);
  formFitWeights();
  samplePhasesBetween();
  ASSERT_EQ(BETWEEN.NB, SOLVEDATA.grid.NFUSE - 1);
  sampleModesBetween();
  ASSERT_EQ(BETWEEN.NB, SOLVEDATA.grid.NFUSE - 1);
  const SecondLoopStore& T = SOLVEDATA.second;
  solveBothLoops(singleCircuit(modeModel(increments + "200\n")), 1e4);
  for (int k = 6; k <= 105; ++k) { // five points of each grid lie below the range
    const int fine = 2 * k - 5;
    ASSERT_NEAR(BETWEEN.WFREQ[k] / SOLVEDATA.grid.WFREQ[fine], 1, 1e-9);
    for (int i = 1; i <= 3; ++i) {
      EXPECT_LT(std::abs(BETWEEN.YC(k, i, 1) - T.YCST(fine, i, 1)),
                1e-6 * std::abs(T.YCST(fine, 1, 1)));
      EXPECT_LT(std::abs(BETWEEN.H(k, i, 1) - T.HST(fine, i, 1)), 1e-6);
      EXPECT_LT(std::abs(BETWEEN.HMODE(k, i) - T.HMODE(fine, i)), 1e-6);
      EXPECT_LT(std::abs(BETWEEN.ZSURGE(k, i) - T.ZSURGST(fine, i)),
                1e-4 * std::abs(T.ZSURGST(fine, i)));
    }
  }
}

TEST(ImprovedFits, PointsOfLostModesAreSampledAnew) {
  solveBothLoops(singleCircuit(phaseModel(EVENWEIGHTS)), 1e4);
  formFitWeights();
  SecondLoopStore& T = SOLVEDATA.second;
  const Complex H = T.HST(70, 2, 1), YC = T.YCST(70, 2, 1);
  EXPECT_EQ(samplePhasesBetween().lost, 0);
  T.HST(70, 2, 1) += 0.1; // as if two modes had converged to one solution
  T.YCST(70, 2, 1) *= 2.0;
  EXPECT_EQ(samplePhasesBetween().lost, 1);
  EXPECT_LT(std::abs(T.HST(70, 2, 1) - H), 1e-6);
  EXPECT_LT(std::abs(T.YCST(70, 2, 1) - YC), 1e-6 * std::abs(YC));
}

// A jump of Z at one point affects no sample there or next to it.
TEST(ImprovedFits, ConstantsBetweenAreSmoothAlsoWhereZJumps) {
  solveBothLoops(singleCircuit(phaseModel(EVENWEIGHTS)), 1e5);
  formFitWeights();
  const FrequencyGrid& G = SOLVEDATA.grid;
  const FirstLoopStore& S = SOLVEDATA.first;
  EXPECT_EQ(samplePhasesBetween().jumps.count, 0);
  const Complex H = BETWEEN.H(60, 1, 1);
  SOLVEDATA.at.ZSTORE(60, 2, 1) *= 1 + 1e-4;
  const PhaseSampling found = samplePhasesBetween();
  EXPECT_EQ(found.jumps.count, 1);
  EXPECT_EQ(found.jumps.f, G.FREQ[60]);
  EXPECT_GT(found.moved, 1e-4);
  EXPECT_LT(std::abs(BETWEEN.H(60, 1, 1) - H), 1e-5);
  for (const double part : {0.13, 0.37, 0.81}) {
    for (const int k : {1, 60, G.NFUSE - 1}) {
      const double w = G.WFREQ[k] * std::pow(G.WFREQ[k + 1] / G.WFREQ[k], part);
      smoothConstantsAt(2 * (k + part) - 1, w);
      const Complex z = S.ZMAT(1, 1), z21 = S.ZMAT(2, 1), y = S.YMAT(2, 1);
      constantsAt(w / TWOPI);
      EXPECT_LT(std::abs(z - S.ZMAT(1, 1)), 1e-6 * std::abs(z)) << k << ' ' << part;
      EXPECT_LT(std::abs(z21 - S.ZMAT(2, 1)), 1e-6 * std::abs(z)) << k << ' ' << part;
      EXPECT_LT(std::abs(y - S.YMAT(2, 1)), 1e-6 * std::abs(y)) << k << ' ' << part;
    }
  }
}

TEST(ImprovedFits, ModesThatMissAreToldAndNumbersHoldWhatIsPrinted) {
  solveBothLoops(singleCircuit(modeModel() + IMPROVED));
  formFitWeights();
  FitOptions& O = RUNDATA.fit;
  O.CONSTT = false;
  O.MAXPZ = O.MAXPA = O.MAXP4 = 3;
  O.ERRZ = O.ERRA = O.ERR4 = 1e-6;
  RUNDATA.run.WARNFLAG = false;
  const std::string console = consoleOf([] { fitModesImproved(); });
  for (const char* what : {"Surge Impedance", "Attenuation Constant", "Transform Element"})
    EXPECT_TRUE(has(console, std::string("*WARNING*: The ") + what + " misses")) << what;
  EXPECT_TRUE(RUNDATA.run.WARNFLAG);

  // p^2 / (s + p)^2 is the limit of a difference of two growing fractions
  const TestFunction F(100, [](Complex s) { return 1.0 / ((1.0 + s / 1e3) * (1.0 + s / 1e3)); });
  const RationalFit fit = F.grown(0.01, true);
  EXPECT_LE(fit.ERR, 0.01);
  double most = 0;
  for (int k = 1; k <= 100; ++k) {
    const Complex model = fit.D + partial(fit.P, fit.R, fit.N, Complex(0, SOLVEDATA.grid.WFREQ[k]));
    most = std::max(most, std::abs(model - F.points[k]));
  }
  EXPECT_LE(most, fit.ERR * (1 + 1e-9));
  for (int m = 1; m <= fit.N; ++m) {
    EXPECT_LT(std::abs(fit.R[m] / fit.P[m]), 1e3);
    for (const double x : {fit.P[m].real(), fit.P[m].imag(), fit.R[m].real(), fit.R[m].imag()})
      EXPECT_EQ(std::stod(fmt::format("{:.11e}", x)), x);
  }
}

TEST(ImprovedFits, WeightsLeftOutAreOne) {
  const std::string keys = "Weighting Factor 2: 0\n";
  const FitOptions& F = RUNDATA.fit;
  solveFirstLoop(singleCircuit(phaseModel(keys)));
  EXPECT_EQ(F.WF1 + F.WF2 + F.WF3, 0);
  solveFirstLoop(singleCircuit(phaseModel(keys) + IMPROVED));
  EXPECT_EQ(F.WF1, 1);
  EXPECT_EQ(F.WF2, 0);
  EXPECT_EQ(F.WF3, 1);
}

TEST(ImprovedFits, PolesSettleAndTheirNumberIsTheFewest) {
  const TestFunction F(100, [](Complex s) {
    Complex sum = 2.0;
    for (const double p : {3.0, 40.0, 45.0, 2e3, 1.1e5}) sum += 0.7 * p / (s + p);
    return sum;
  });
  EXPECT_EQ(F.grown(1e-9, true).N, 5);
  SettledFit fit;
  PoleTable poles;
  startingPoles(poles, 4, 1, 1e6);
  const double settled = SETTLE(F.samples(), {F.NB, F.W, &F.middles}, 4, 0, poles, fit);
  for (int pass = 1; pass <= 5; ++pass) {
    VFIT(F.samples(), 4, poles, &fit.model, fit.errors);
    EXPECT_GT(fit.errors.ERRMAX, 0.9 * settled);
  }
}

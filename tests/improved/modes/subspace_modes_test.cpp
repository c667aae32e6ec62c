// Modes followed as invariant subspaces: the assignment, one step, whole solves and reports.
#include "improved/modes/subspace_modes.h"

#include "improved/modes/assignment.h"
#include "improved/modes/forward_waves.h"
#include "improved/modes/subspace_walk.h"
#include "kernels/matrix_kernels.h"
#include "modal/first_loop.h"
#include "modal/frequency_grid.h"
#include "modal/line_constants.h"
#include "modal/report_modes.h"
#include "modal/second_loop.h"
#include "run/methods.h"
#include "store/rundata.h"
#include "store/yz_table.h"
#include "support/console_capture.h"
#include "support/description.h"
#include "support/overhead_lines.h"
#include "support/solve.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <vector>

using namespace lcp;
using namespace lcp::test;

namespace {

const std::string IMPROVED = "Numerical Options\n{\nImproved Modes : 1\n}\n";

double sumOf(const RealMatrix& cost, const std::vector<int>& column) {
  double sum = 0;
  for (std::size_t i = 0; i < column.size(); ++i) sum += cost(static_cast<int>(i) + 1, column[i]);
  return sum;
}

TEST(Assignment, IsTheBestOfAllPermutations) {
  static RealMatrix cost;
  LineNumbers numbers(7);
  for (int n = 1; n <= 6; ++n) {
    for (int j = 1; j <= n; ++j) {
      for (int i = 1; i <= n; ++i) cost(i, j) = numbers.upTo(-3, 9) / 4.0; // ties among them
    }
    std::vector<int> column(static_cast<std::size_t>(n));
    std::iota(column.begin(), column.end(), 1);
    double least = sumOf(cost, column);
    while (std::next_permutation(column.begin(), column.end()))
      least = std::min(least, sumOf(cost, column));
    ModeInts found;
    ASSIGN(found, cost, n);
    const std::vector<int> chosen(found.data(), found.data() + n);
    EXPECT_EQ(sumOf(cost, chosen), least) << n;
    EXPECT_TRUE(std::is_permutation(chosen.begin(), chosen.end(), column.begin())) << n;
  }
}

// P = Y Z with two equal modes, in a plane for which the reference has another basis.
TEST(SubspaceModes, EqualModesKeepTheBasisOfTheReference) {
  static ModeFrame frame;
  FirstLoopStore& S = SOLVEDATA.first;
  const double c = 0.8, s = 0.6;
  const double X[3][3] = {{0, c, -s}, {0, s, c}, {1, 0, 0}};
  clear(S.PMAT, 3);
  clear(S.ZMAT, 3);
  for (int i = 1; i <= 3; ++i) {
    S.ZMAT(i, i) = Complex(0, 1);
    S.PMAT(i, i) = i == 3 ? 2.0 : 1.0;
    for (int j = 1; j <= 3; ++j) frame.X(i, j) = X[i - 1][j - 1];
  }
  S.PMAT(1, 2) = S.PMAT(2, 1) = 1e-13;
  invertFrame(frame, 3);
  static ModeSet modes;
  findModes(modes, 3);
  EXPECT_TRUE(followSubspaces(frame, modes, 3));
  COLNORM(S.TI, S.TI, 3);
  EXPECT_NEAR(std::abs(S.EIG[1] - 2.0), 0, 1e-12);
  for (int j = 1; j <= 3; ++j) {
    for (int i = 1; i <= 3; ++i)
      EXPECT_NEAR(std::abs(S.TI(i, j)), std::abs(X[i - 1][j - 1]), 1e-12);
  }
}

ModeReals reported(double f) {
  RUNDATA.display.DISPFREQ = f;
  constantsAt(f);
  runReportModes();
  ModeReals z;
  for (int i = 1; i <= RUNDATA.line.NC; ++i) z[i] = SOLVEDATA.second.ZSURGE[i].real();
  return z;
}

TEST(SubspaceModes, ReportAgreesWithABergeronLineOfTwoFrequencies) {
  const std::string body = doubleCircuit(bergeronModel("Frequency for Loss Approximation: 2E5\n"));
  solveBothLoops(body + IMPROVED);
  ASSERT_TRUE(RUNDATA.numerics.IMPROVEDMODES);
  const ModeReals model = SOLVEDATA.second.ZSURGER;
  const ModeReals report = reported(RUNDATA.line.SSFREQ);
  for (int i = 1; i <= RUNDATA.line.NC; ++i) EXPECT_NEAR(report[i] / model[i], 1, 1e-9) << i;
}

// Many modes are close together over the whole grid.
TEST(SubspaceModes, OfManyCircuitsAreAllThereAtTheEndOfTheGrid) {
  const std::string console =
      consoleOf([] { solveFirstLoop(manyCircuits(12, phaseModel()) + IMPROVED); });
  EXPECT_EQ(console.find_first_of("<>"), std::string::npos) << console;
  const int n = RUNDATA.line.NC, last = SOLVEDATA.grid.NFREQ - 1;
  ASSERT_EQ(n, 12);
  constantsAt(SOLVEDATA.grid.FREQ[last]);
  Complex trace, sum;
  for (int i = 1; i <= n; ++i) {
    trace += SOLVEDATA.first.PMAT(i, i);
    sum += SOLVEDATA.at.MEIG(last, i);
  }
  EXPECT_LT(std::abs(trace - sum), 1e-11 * std::abs(trace)); // a doubled mode would replace another
}

// The largest changes of vectors, surge impedances and eigenvalues between frequencies.
struct LargestSteps {
  double vector = 0, impedance = 0, eigenvalue = 0;
};

LargestSteps stepsWith(const std::string& body, int increments) {
  const std::string keys = "Total Number of Frequency Increments: " + std::to_string(increments);
  solveBothLoops(body + phaseModel(keys + "\n") + IMPROVED);
  const SecondLoopStore& T = SOLVEDATA.second;
  LargestSteps steps;
  for (int k = 2; k < SOLVEDATA.grid.NFREQ; ++k) { // the last one is out of order
    const double scale = std::pow(SOLVEDATA.grid.FREQ[k] / SOLVEDATA.grid.FREQ[k - 1], 2);
    for (int j = 1; j <= RUNDATA.line.NC; ++j) {
      const Complex z = T.ZSURGST(k, j), l = SOLVEDATA.at.MEIG(k, j);
      const double dz = std::abs(z - T.ZSURGST(k - 1, j)) / std::abs(z);
      const double dl = std::abs(l - scale * SOLVEDATA.at.MEIG(k - 1, j)) / std::abs(l);
      steps.impedance = std::max(steps.impedance, dz);
      steps.eigenvalue = std::max(steps.eigenvalue, dl);
      for (int i = 1; i <= RUNDATA.line.NC; ++i)
        steps.vector = std::max(steps.vector, std::abs(T.TIST(k, i, j) - T.TIST(k - 1, i, j)));
    }
  }
  return steps;
}

// Two circuits that are nearly mirror images: some surge impedances cross the imaginary axis.
std::string nearlyMirrored() {
  const auto circuit = [](const char* phases, const std::string& places) {
    return std::string("Circuit\n{\nConductors: 3\nConductor Phase Information: ") + phases +
           "\nRadius: 0.01667\nDCResistance: 0.037\nSag: 5.473\n" + places + "}\n";
  };
  return summary(6) + "Line Constants Tower\n{\n" +
         circuit("1 2 3", "ShuntConductance: 1e-10\nP1 : -4.260 30.209\nP2 : -5.288 35.122\nP3 : "
                          "-5.039 39.537\n") +
         circuit(
             "4 5 6",
             "ShuntConductance: 1e-11\nP1 : 4.931 30.803\nP2 : 5.319 34.936\nP3 : 4.519 39.082\n") +
         "}\n" + "Line Constants Ground Data\n{\nGroundResistivity: 10\n}\n";
}

// A jump keeps its height when the grid becomes denser. Yc = TI / Zs TI^T, which does not use the
// surge impedances otherwise, shows their sign.
TEST(SubspaceModes, CurvesOfModesAreContinuousAndOfOneSign) {
  for (const std::string& body : {singleCircuit(""), doubleCircuit(""), nearlyMirrored()}) {
    const LargestSteps coarse = stepsWith(body, 200), fine = stepsWith(body, 400);
    EXPECT_LT(fine.vector, 0.6 * coarse.vector);
    EXPECT_LT(fine.impedance, 0.6 * coarse.impedance);
    EXPECT_LT(fine.eigenvalue, 0.6 * coarse.eigenvalue);
    for (int k = 1; k <= SOLVEDATA.grid.NFREQ; ++k) {
      const Dense TI = stepOf(SOLVEDATA.second.TIST, k);
      const std::size_t n = TI.size();
      const Dense Yc = formed(n, [&](auto i, auto j) {
        Wide sum = 0;
        for (std::size_t m = 0; m < n; ++m)
          sum += TI[i][m] * TI[j][m] / Wide(SOLVEDATA.second.ZSURGST(k, static_cast<int>(m) + 1));
        return sum;
      });
      EXPECT_LT(distance(Yc, stepOf(SOLVEDATA.second.YCST, k)), 1e-9) << k;
    }
  }
}

// Modes that cross between that frequency and the end of the grid keep the order of the neighbour.
TEST(SubspaceModes, TheConstantTransformStepContinuesItsNeighbour) {
  for (const double f : {0.6, 1.0, 100.0, 3e4}) {
    const std::string key = fmt::format("Frequency to Calculate Constant Transform: {}\n", f);
    solveFirstLoop(doubleCircuit(phaseModel(key)) + IMPROVED);
    const Dense X = stepOf(SOLVEDATA.at.MTI, SOLVEDATA.first.KCT),
                Y = stepOf(SOLVEDATA.at.MTI, 107);
    const Dense share = product(inverse(X), Y);
    for (std::size_t m = 0; m < X.size(); ++m)
      EXPECT_GT(std::abs(share[m][m]), 0.9) << f << ' ' << m;
  }
}

// The number of the mode at step k that has this eigenvalue.
int modeWith(Complex eigenvalue, int k) {
  int best = 1;
  for (int i = 2; i <= RUNDATA.line.NC; ++i) {
    if (std::abs(SOLVEDATA.at.MEIG(k, i) - eigenvalue) <
        std::abs(SOLVEDATA.at.MEIG(k, best) - eigenvalue))
      best = i;
  }
  return best;
}

// Modes that turn into each other over three decades are the same as over a hundred steps.
TEST(SubspaceModes, FollowALongWayAsAFineGrid) {
  const std::string range = "Curve Fitting Start Frequency: 10\nCurve Fitting End Frequency: 1E4\n";
  solveFirstLoop(nearlyMirrored() + bergeronModel("Frequency for Loss Approximation: 10\n") +
                 IMPROVED);
  RUNDATA.line.SSFREQ = 1e4;
  layGrid();
  firstFrequencyLoopImproved();
  ModeComplex low, high;
  for (int i = 1; i <= 6; ++i) {
    low[i] = SOLVEDATA.at.MEIG(1, i);
    high[i] = SOLVEDATA.at.MEIG(2, i);
  }
  solveFirstLoop(nearlyMirrored() + phaseModel(range) + IMPROVED);
  for (int i = 1; i <= 6; ++i) {
    const int mode = modeWith(low[i], 6); // behind five points below the range
    EXPECT_LT(std::abs(SOLVEDATA.at.MEIG(106, mode) / high[i] - 1.0), 1e-9) << i;
  }
}

// The rows of a table stand where they stand, whatever the frequencies of the Bergeron line are.
TEST(SubspaceModes, TheWayBetweenRowsOfATableLeadsFromOneToTheOther) {
  const auto solve = [](double loss, double steady) {
    RUNDATA.bergeron.FLOSS = loss;
    RUNDATA.line.SSFREQ = steady;
    layGrid();
    firstFrequencyLoopImproved();
  };
  solveFirstLoop(nearlyMirrored() + bergeronModel() + IMPROVED);
  solve(10, 1000);
  static LineMatrix Y, Z;
  YZTABLE.order = 6;
  YZTABLE.rows = 2;
  YZTABLE.YTABLE.map(6);
  YZTABLE.ZTABLE.map(6);
  for (int k = 1; k <= 2; ++k) {
    YZTABLE.FTABLE[k] = SOLVEDATA.grid.FREQ[k];
    SOLVEDATA.at.YSTORE.load(k, Y, 6);
    SOLVEDATA.at.ZSTORE.load(k, Z, 6);
    YZTABLE.YTABLE.store(k, Y, 6);
    YZTABLE.ZTABLE.store(k, Z, 6);
  }
  RUNDATA.run.DATAFMT = ROUTEMULTIPLE;
  solve(10, 1000);
  const Dense own = stepOf(SOLVEDATA.at.MTI, 2);
  solve(5000, 5e4);
  EXPECT_LT(distance(own, stepOf(SOLVEDATA.at.MTI, 2)), 1e-9);
}

// What a mode gains the model has it lose: its surge impedance is that of the line that does.
TEST(SubspaceModes, AModeWithGainHasTheSurgeImpedanceOfOneThatLosesAsMuch) {
  const Complex YM(0, 3e-9);
  for (const double r : {1e-6, 1e-4, 5e-4}) {
    const Complex losing = Complex(r, 8e-4) * YM, gamma = std::sqrt(losing);
    const Complex Zs = forwardSurgeImpedance(YM, Complex(r, 8e-4), losing, gamma);
    EXPECT_LT(std::abs(Zs - std::sqrt(Complex(r, 8e-4) / YM)), 1e-9 * std::abs(Zs));
    const Complex gain =
        forwardSurgeImpedance(YM, Complex(-r, 8e-4), Complex(-r, 8e-4) * YM, gamma);
    EXPECT_LT(std::abs(gain - Zs), 1e-9 * std::abs(Zs)) << r;
  }
}

} // namespace

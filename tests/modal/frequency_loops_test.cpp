// The frequency loops over whole grids; whole runs cover the searches of the first loop.
#include "modal/first_loop.h"

#include "modal/line_constants.h"
#include "modal/lost_modes.h"
#include "modal/second_loop.h"
#include "modal/tracked_step.h"
#include "store/rundata.h"
#include "store/solvedata.h"
#include "support/child.h"
#include "support/console_capture.h"
#include "support/dense_functions.h"
#include "support/solve.h"
#include "support/whole_run.h"

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <unistd.h>

using namespace lcp;
using namespace lcp::test;

namespace {

Dense vectors(int k) { return stepOf(SOLVEDATA.at.MTI, k); }

// Residual of A x = l x over all modes of step k, with A divided by the mean magnitude of its
// diagonal and the largest element of x equal to 1.
double newtonResidual(int k) {
  constantsAt(SOLVEDATA.grid.FREQ[k]);
  const Dense A = corner(SOLVEDATA.first.PMAT, RUNDATA.line.NC), T = vectors(k);
  long double s = 0;
  for (std::size_t i = 0; i < A.size(); ++i) s += std::abs(A[i][i]) / A.size();
  const Dense TL = formed(A.size(), [&](std::size_t i, std::size_t m) {
    return T[i][m] * Wide(SOLVEDATA.at.MEIG(k, static_cast<int>(m) + 1));
  });
  return largest(sum(product(A, T), TL, -1)) / static_cast<double>(s);
}

// Rotation of a mode's vector between two steps: 1 - |cosine| of their angle.
double turn(int k, std::size_t mode) {
  const Dense X = vectors(k), Y = vectors(k - 1);
  Wide dot;
  long double a = 0, b = 0;
  for (std::size_t i = 0; i < X.size(); ++i) {
    dot += std::conj(X[i][mode]) * Y[i][mode];
    a += std::norm(X[i][mode]);
    b += std::norm(Y[i][mode]);
  }
  return static_cast<double>(1 - std::abs(dot) / std::sqrt(a * b));
}

// Vectors have unit length, their pivots are real and positive.
void expectTurnedVectors(int k) {
  for (int m = 1; m <= RUNDATA.line.NC; ++m) {
    double column = 0;
    for (int r = 1; r <= RUNDATA.line.NC; ++r) column += std::norm(SOLVEDATA.second.TIST(k, r, m));
    EXPECT_NEAR(column, 1.0, 1e-13);
    const Complex pivot = SOLVEDATA.second.TIST(k, SOLVEDATA.first.PIVOT0[m], m);
    EXPECT_NEAR(pivot.imag(), 0.0, 1e-13);
    EXPECT_GT(pivot.real(), 0.0);
  }
}

} // namespace

TEST(FirstLoop, ModesOfADoubleCircuitAreSolvedAndContinuous) {
  solveFirstLoop(doubleCircuit(phaseModel("Curve Fitting Start Frequency: 0.02\n"
                                          "Curve Fitting End Frequency: 1e7\n"
                                          "Total Number of Frequency Increments: 200\n")));
  EXPECT_FALSE(SOLVEDATA.first.IDEALT);
  for (int k = 2; k <= SOLVEDATA.grid.NFREQ; ++k) {
    EXPECT_LE(newtonResidual(k), 1.1e-8) << k;
    if (k == SOLVEDATA.grid.NFREQ) continue; // of the constant transformation
    for (std::size_t m = 0; m < 6; ++m) EXPECT_LT(turn(k, m), 0.05) << k << ' ' << m;
  }
}

TEST(FirstLoop, TwoModesOnOneSolutionAreTold) {
  // With twenty wires, a direct step between grid points leads two modes to the same eigenvalue.
  const std::string line =
      manyCircuits(20, modeModel("Maximum # of Poles for Surge Impedance Fit: 1\n"
                                 "Maximum # of Poles for Attenuation Constant "
                                 "Fit: 1\n"));
  const std::string told = "corvo: warning: modes 18 and 19 are one at 16.26 Hz and at 77 more ";
  EXPECT_EQ(runLine(line, "1e5").errors.substr(0, told.size()), told);
  EXPECT_EQ(runLine(line + "Numerical Options\n{\nImproved Modes : 1\n}\n", "1e5").errors, "");
}

TEST(FirstLoop, TheTwoModesThatAreHardlyApartAreNamed) {
  const ChildResult child = runChild([] {
    FirstLoopStore& S = SOLVEDATA.first;
    RUNDATA.line.NC = 4;
    const double rows[] = {1, 3e10, 1, 2e10};
    for (int i = 1; i <= 4; ++i) S.TIINV(i, i) = rows[i - 1];
    for (int i = 1; i <= 4; ++i) S.TI(i, i) = S.EIG[i] = i;
    LostModes lost;
    lost.look(1);
    dup2(STDOUT_FILENO, STDERR_FILENO);
    lost.warn();
  });
  EXPECT_NE(child.console.find("modes 2 and 4 can hardly be told apart"), std::string::npos);
}

TEST(FirstLoop, TheConstantTransformStepContinuesItsNeighbour) {
  // grid of 100 increments from 0.5 Hz to 1 MHz
  for (const auto& [f, start] : {std::pair{2000.0, 63}, {2e6, 106}, {0.01, 1}}) {
    const std::string key = fmt::format("Frequency to Calculate Constant Transform: {}\n", f);
    const std::string told = consoleOf([&] { solveFirstLoop(doubleCircuit(phaseModel(key))); });
    EXPECT_EQ(told.find(NEWTONTITLE), std::string::npos) << f; // it starts from its pivots
    EXPECT_EQ(SOLVEDATA.first.KCT, start) << f;
    EXPECT_LE(newtonResidual(107), 1.1e-8) << f;
  }
}

TEST(SecondLoop, PhaseFunctionsAreThoseOfTheMatrices) {
  // H = exp(-l sqrt(Y Z)), Yc = sqrt(Y Z)^-1 Y
  for (const std::string& body :
       {doubleCircuit(phaseModel()), doubleCircuit(phaseModel(), "Transposed: 1\n"),
        singleCircuit(phaseModel(), "Transposed: 1\n")}) {
    for (const double length : {1e3, 1e5}) {
      solveBothLoops(body, length);
      EXPECT_EQ(SOLVEDATA.first.IDEALT, RUNDATA.line.NC == 3);
      for (int k = 1; k <= SOLVEDATA.grid.NFREQ; k += 15) {
        const Dense Y = stepOf(SOLVEDATA.at.YSTORE, k), YC = stepOf(SOLVEDATA.second.YCST, k);
        const Dense gamma = squareRoot(product(Y, stepOf(SOLVEDATA.at.ZSTORE, k)));
        const Dense H = exponential(times(-length, gamma));
        // the eigenvalues are solved to 1e-8; the length multiplies this error
        EXPECT_LT(distance(stepOf(SOLVEDATA.second.HST, k), H), 2e-6) << k;
        EXPECT_LT(distance(YC, product(inverse(gamma), Y)), 1e-6) << k;
        if (!SOLVEDATA.first.IDEALT) expectTurnedVectors(k);
      }
    }
  }
}

TEST(SecondLoop, AFadedModeKeepsItsTravelTime) {
  solveBothLoops(singleCircuit(phaseModel("Curve Fitting End Frequency: 1e7\n")), 5e5);
  const SecondLoopStore& T = SOLVEDATA.second;
  int faded = 0;
  for (int i = 1; i <= 3; ++i) {
    int last = 106;
    while (T.HMAG(last, i) < 1e-10) --last;
    faded += last < 106 ? 1 : 0;
    EXPECT_NEAR(T.TAUMS[i], 1000 * T.GAMLEN(last, i).imag() / SOLVEDATA.grid.WFREQ[last], 1e-9);
  }
  EXPECT_GT(faded, 0);
}

TEST(SecondLoop, WeightsTurnAtTheSteadyStateFrequency) {
  solveFirstLoop(singleCircuit(phaseModel("Weighting Factor 1: 1\nWeighting Factor 2: 2\n"
                                          "Weighting Factor 3: 3\n")));
  formFitWeights();
  const FrequencyGrid& G = SOLVEDATA.grid;
  EXPECT_EQ(G.NFUSE, 106);
  for (int k = 1; k <= G.NFUSE; ++k) // 2 at the last step up to 60 Hz
    EXPECT_EQ(G.WFIT[k], G.FREQ[k] > 60 ? 3 : (G.FREQ[k + 1] > 60 ? 2 : 1)) << k;
  RUNDATA.line.SSFREQ = G.FREQ[40]; // a step of its own
  formFitWeights();
  for (int k = 1; k <= G.NFUSE; ++k) EXPECT_EQ(G.WFIT[k], k > 40 ? 3 : (k == 40 ? 2 : 1)) << k;
}

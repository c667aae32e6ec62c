// The first frequency loop over whole grids.
#include "modal/first_loop.h"

#include "modal/line_constants.h"
#include "store/rundata.h"
#include "store/solvedata.h"
#include "support/child.h"
#include "support/console_capture.h"
#include "support/dense_functions.h"
#include "support/solve.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

// Residual of A x = l x over all modes of step k, as the Newton step measures it: A over the mean
// magnitude of its diagonal, the largest element of x at 1.
double newtonResidual(int k) {
  const int n = RUNDATA.line.NC;
  constantsAt(SOLVEDATA.grid.FREQ[k]);
  const LineMatrix& A = SOLVEDATA.first.PMAT;
  double s = 0;
  for (int i = 1; i <= n; ++i) s += std::abs(A(i, i)) / n;
  double worst = 0;
  for (int m = 1; m <= n; ++m) {
    double e = 0;
    for (int i = 1; i <= n; ++i) {
      Complex r = -SOLVEDATA.at.MEIG(k, m) * SOLVEDATA.at.MTI(k, i, m);
      for (int j = 1; j <= n; ++j) r += A(i, j) * SOLVEDATA.at.MTI(k, j, m);
      e += std::abs(r) / s;
    }
    worst = std::max(worst, e);
  }
  return worst;
}

std::string wideGrid(const char* keys = "") {
  return phaseModel(std::string("Curve Fitting Start Frequency: 0.02\n"
                                "Curve Fitting End Frequency: 1e7\n") +
                    keys);
}

// How far a mode's vector turns between two steps: 1 - |cosine| of their angle.
double turn(int k, int mode) {
  Complex dot;
  double a = 0, b = 0;
  for (int i = 1; i <= RUNDATA.line.NC; ++i) {
    const Complex x = SOLVEDATA.at.MTI(k, i, mode), y = SOLVEDATA.at.MTI(k - 1, i, mode);
    dot += std::conj(x) * y;
    a += std::norm(x);
    b += std::norm(y);
  }
  return 1 - std::abs(dot) / std::sqrt(a * b);
}

} // namespace

TEST(FirstLoop, ModesOfADoubleCircuitAreSolvedAndContinuous) {
  solveFirstLoop(doubleCircuit(wideGrid("Total Number of Frequency Increments: 200\n")));
  EXPECT_FALSE(SOLVEDATA.first.IDEALT);
  for (int k = 2; k <= SOLVEDATA.grid.NFREQ; ++k) {
    EXPECT_LE(newtonResidual(k), 1.1e-8) << k;
    if (k == SOLVEDATA.grid.NFREQ) continue; // of the constant transform
    for (int m = 1; m <= 6; ++m) EXPECT_LT(turn(k, m), 0.05) << k << ' ' << m;
  }
}

TEST(FirstLoop, NoTwoModesEndOnOneSolution) {
  // With twenty wires a step from grid point to grid point leads two modes to one eigenvalue.
  solveFirstLoop(manyCircuits(20, phaseModel()));
  const int n = RUNDATA.line.NC;
  static LineMatrix T;
  for (int k = 1; k <= SOLVEDATA.grid.NFREQ; ++k) {
    SOLVEDATA.at.MTI.load(k, T, n);
    const Dense V = corner(T, n);
    EXPECT_LT(distance(product(V, inverse(V)), identity(static_cast<std::size_t>(n))), 1e-12) << k;
    EXPECT_LE(newtonResidual(k), 1.1e-8) << k;
  }
}

TEST(FirstLoop, TheConstantTransformStepContinuesItsNeighbour) {
  // grid of 100 increments from 0.5 Hz to 1 MHz
  for (const auto& [f, start] : {std::pair{2000.0, 63}, {2e6, 106}, {0.01, 1}}) {
    const std::string key = fmt::format("Frequency to Calculate Constant Transform: {}\n", f);
    solveFirstLoop(doubleCircuit(phaseModel(key)));
    EXPECT_EQ(SOLVEDATA.first.KCT, start) << f;
    EXPECT_LE(newtonResidual(107), 1.1e-8) << f;
  }
}

TEST(FirstLoop, ASearchIsToldOnceForTheSolveAndOnceForTheStep) {
  const std::string told = consoleOf([] {
    solveFirstLoop(doubleCircuit(wideGrid()));
    solveFirstLoop(doubleCircuit(wideGrid())); // a further length step tells it again
  });
  const auto count = [&](const std::string& words) {
    int n = 0;
    for (auto at = told.find(words); at != std::string::npos; at = told.find(words, at + 1)) ++n;
    return n;
  };
  const std::string stars(53, '*');
  EXPECT_EQ(count(lines({stars, "NEWTON-RAPHSON EIGENVALUE PROCEDURE", stars, "", "",
                         " Frequency Step # 46:  0.6034E+02 Hz", std::string(31, '-'),
                         "NR proceedure required too many iterations while ",
                         "  solving eigenvalue/eigenvectors at this frequency ",
                         "  step.  Searching for a stable frequency to re-solve",
                         "  at before continuing."})),
            2);
  EXPECT_EQ(count("NEWTON-RAPHSON"), 2);
  EXPECT_EQ(count(" Frequency Step # 47: "), 2);
  EXPECT_GT(count("<>>>>>>>>>>"), 6); // a digit deeper, ten sub-steps, the own frequency last
}

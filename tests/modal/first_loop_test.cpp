// The first frequency loop over whole grids. Whole runs hold its searches.
#include "modal/first_loop.h"

#include "modal/line_constants.h"
#include "store/rundata.h"
#include "store/solvedata.h"
#include "support/console_capture.h"
#include "support/dense_functions.h"
#include "support/solve.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

Dense vectors(int k) {
  static LineMatrix T;
  SOLVEDATA.at.MTI.load(k, T, RUNDATA.line.NC);
  return corner(T, RUNDATA.line.NC);
}

// Residual of A x = l x over all modes of step k, as the Newton step measures it: A over the mean
// magnitude of its diagonal, the largest element of x at 1.
double newtonResidual(int k) {
  constantsAt(SOLVEDATA.grid.FREQ[k]);
  const Dense A = corner(SOLVEDATA.first.PMAT, RUNDATA.line.NC), T = vectors(k), AT = product(A, T);
  const std::size_t n = A.size();
  long double s = 0, worst = 0;
  for (std::size_t i = 0; i < n; ++i) s += std::abs(A[i][i]) / static_cast<long double>(n);
  for (std::size_t m = 0; m < n; ++m) {
    const Wide l = SOLVEDATA.at.MEIG(k, static_cast<int>(m) + 1);
    long double e = 0;
    for (std::size_t i = 0; i < n; ++i) e += std::abs(AT[i][m] - l * T[i][m]) / s;
    worst = std::max(worst, e);
  }
  return static_cast<double>(worst);
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
  solveFirstLoop(doubleCircuit(phaseModel("Curve Fitting Start Frequency: 0.02\n"
                                          "Curve Fitting End Frequency: 1e7\n"
                                          "Total Number of Frequency Increments: 200\n")));
  EXPECT_FALSE(SOLVEDATA.first.IDEALT);
  for (int k = 2; k <= SOLVEDATA.grid.NFREQ; ++k) {
    EXPECT_LE(newtonResidual(k), 1.1e-8) << k;
    if (k == SOLVEDATA.grid.NFREQ) continue; // of the constant transform
    for (int m = 1; m <= 6; ++m) EXPECT_LT(turn(k, m), 0.05) << k << ' ' << m;
  }
}

TEST(FirstLoop, NoTwoModesEndOnOneSolution) {
  // With twenty wires a step from grid point to grid point leads two modes to one eigenvalue.
  consoleOf([] { solveFirstLoop(manyCircuits(20, phaseModel())); });
  for (int k = 1; k <= SOLVEDATA.grid.NFREQ; ++k) {
    const Dense V = vectors(k);
    EXPECT_LT(distance(product(V, inverse(V)), identity(V.size())), 1e-12) << k;
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

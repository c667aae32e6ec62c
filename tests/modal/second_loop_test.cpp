#include "modal/second_loop.h"

#include "store/rundata.h"
#include "store/solvedata.h"
#include "support/dense_functions.h"
#include "support/solve.h"

#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

// One step of a curve store as a dense matrix.
template <class Store> Dense stepOf(const Store& store, int k) {
  static LineMatrix M;
  store.load(k, M, RUNDATA.line.NC);
  return corner(M, RUNDATA.line.NC);
}

// Vectors are of length one, their pivots real and positive.
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

TEST(SecondLoop, PhaseFunctionsAreThoseOfTheMatrices) {
  // H = exp(-l sqrt(Y Z)), Yc = sqrt(Y Z)^-1 Y
  for (const std::string& body :
       {doubleCircuit(phaseModel()), singleCircuit(phaseModel(), "Transposed: 1\n")}) {
    for (const double length : {1e3, 1e5}) {
      solveBothLoops(body, length);
      EXPECT_EQ(SOLVEDATA.first.IDEALT, RUNDATA.line.NC == 3);
      for (int k = 1; k <= SOLVEDATA.grid.NFREQ; k += 15) {
        const Dense Y = stepOf(SOLVEDATA.at.YSTORE, k), YC = stepOf(SOLVEDATA.second.YCST, k);
        const Dense gamma = squareRoot(product(Y, stepOf(SOLVEDATA.at.ZSTORE, k)));
        const Dense H = exponential(times(-length, gamma));
        // the eigenvalues are solved to 1e-8, an error that the length multiplies
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
}

// The fits of the mode model: options, stores, the sign of the transformation.
#include "fit/mode_model.h"

#include "base/constants.h"
#include "modal/second_loop.h"
#include "store/rundata.h"
#include "support/solve.h"

#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

void solveThreePhases(const std::string& keys) {
  SOLVEDATA.second.TISUM = {}; // as at the start of a run: each solve adds to it
  solveBothLoops(singleCircuit("Frequency Dep. (Mode) Model Options\n{\nWeighting Factor 1: 1\n"
                               "Weighting Factor 2: 1\nWeighting Factor 3: 1\n" +
                               keys + "}\n"));
  formFitWeights();
}

} // namespace

TEST(ModeModel, EveryFitHasItsOwnTargetAndLimit) {
  struct Case {
    const char* keys;
    int surge, attenuation, element;
  };
  const Case cases[] = {
      {"Maximum Fitting Error (%) for Surge Impedance: 90\n"
       "Maximum Fitting Error (%) for Attenuation Constant: 0\n"
       "Maximum # of Poles for Attenuation Constant Fit: 5\n",
       1, 5, 20},
      {"Maximum Fitting Error (%) for Surge Impedance: 0\n"
       "Maximum # of Poles for Surge Impedance Fit: 3\n"
       "Maximum Fitting Error (%) for Attenuation Constant: 90\n",
       3, 1, 20},
  };
  for (const Case& c : cases) {
    solveThreePhases(c.keys);
    RUNDATA.fit.CONSTT = false;
    for (int i = 1; i <= 3; ++i) {
      fitSurgeImpedance(i);
      fitAttenuation(i);
      EXPECT_EQ(MODEMODEL.Z[i].N, c.surge);
      EXPECT_EQ(MODEMODEL.A[i].N, c.attenuation);
      for (int r = 1; r <= 3; ++r) {
        fitTransformElement(i, r);
        const RationalFit& T = MODEMODEL.T(i, r);
        EXPECT_TRUE(T.N == c.element || T.ERR <= 0.02) << T.ERR;
        EXPECT_LE(T.N, c.element);
      }
    }
  }
}

// Magnitude and angle stay those of the element, whatever the sign.
TEST(ModeModel, SignedMagnitudesAndTurnedAnglesAreStillTheVectors) {
  solveThreePhases("");
  const SecondLoopStore& T = SOLVEDATA.second;
  int negative = 0;
  for (int i = 1; i <= 3; ++i) {
    for (int r = 1; r <= 3; ++r) {
      fitTransformElement(i, r);
      const double sign = T.TISUM(i, r) > 0 ? 1 : -1;
      negative += sign < 0 ? 1 : 0;
      for (int k = 1; k <= SOLVEDATA.grid.NFREQ; ++k) {
        const double angle = T.TIARG(k, i, r);
        EXPECT_GE(sign * T.TIMAG(k, i, r), 0);
        const Complex t = T.TIMAG(k, i, r) * std::exp(Complex(0, angle / DEGREES));
        EXPECT_LT(std::abs(t - T.TIST(k, i, r)), 1e-14);
      }
      EXPECT_EQ(MODEMODEL.T(i, r).N, 0);
      EXPECT_EQ(MODEMODEL.T(i, r).D, T.TIMAG(SOLVEDATA.grid.NFREQ, i, r));
    }
  }
  EXPECT_GT(negative, 0);
  EXPECT_LT(negative, 9);
}

TEST(ModeModel, AnglesOfATurnedElementEndAtTwoHundredAndSeventy) {
  SecondLoopStore& T = SOLVEDATA.second;
  const double before[] = {0, 45, 90, 91, 179, 180, -45, -90, -180};
  const double after[] = {180, 225, 270, -89, -1, 0, 135, 90, 0};
  SOLVEDATA.grid.NFREQ = 9;
  RUNDATA.fit.CONSTT = true;
  for (const double mean : {-0.1, 0.0, 0.1}) {
    T.TISUM(1, 2) = mean;
    for (int k = 1; k <= 9; ++k) {
      T.TIMAG(k, 1, 2) = k;
      T.TIARG(k, 1, 2) = before[k - 1];
    }
    fitTransformElement(1, 2);
    EXPECT_EQ(MODEMODEL.T(1, 2).D, mean > 0 ? 9 : -9);
    for (int k = 1; k <= 9; ++k) {
      EXPECT_EQ(T.TIARG(k, 1, 2), mean > 0 ? before[k - 1] : after[k - 1]);
    }
  }
}

// The fits of the mode model: counts of poles, the delay taken out of the angle, the sign of the
// transformation. Responses are tested on the model file.
#include "fit/mode_model.h"

#include "modal/second_loop.h"
#include "store/rundata.h"
#include "support/console_capture.h"
#include "support/solve.h"

#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

// All that grow from one pole on; a count of 0 is one of 1.
TEST(ModeModel, EveryFitHasItsOwnTargetAndLimit) {
  solveBothLoops(singleCircuit(modeModel()));
  formFitWeights();
  SecondLoopStore& T = SOLVEDATA.second;
  FitOptions& O = RUNDATA.fit;
  O.CONSTT = false;
  O.MAXPZ = 3;
  O.MAXPA = 5;
  for (double* target : {&O.ERRZ, &O.ERRA, &O.ERR4}) { // the one that one pole meets
    O.ERRZ = O.ERRA = O.ERR4 = 0;
    *target = 90;
    O.MAXP4 = target == &O.ERRZ ? 0 : 4;
    for (int i = 1; i <= 3; ++i) {
      const double angles[] = {-200, 90, -1000}, lag[] = {-200, -270, -280};
      for (int k = 1; k <= 3; ++k) T.HARG(k, i) = angles[k - 1];
      consoleOf([&] {
        fitSurgeImpedance(i);
        fitAttenuation(i);
        fitTransformElement(i, 1);
      });
      EXPECT_EQ(MODEMODEL.Z[i].N, target == &O.ERRZ ? 1 : 3);
      EXPECT_EQ(MODEMODEL.A[i].N, target == &O.ERRA ? 1 : 5);
      EXPECT_EQ(MODEMODEL.T(i, 1).N, target == &O.ERRA ? 4 : 1);
      for (int k = 1; k <= 3; ++k) // without the part of the delay, above -360 degrees up to 0
        EXPECT_NEAR(T.HARG(k, i), lag[k - 1] + 0.36 * SOLVEDATA.grid.FREQ[k] * T.TAUMS[i], 1e-9);
    }
  }
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
    EXPECT_EQ(MODEMODEL.T(1, 2).N, 0);
    EXPECT_EQ(MODEMODEL.T(1, 2).D, mean > 0 ? 9 : -9);
    for (int k = 1; k <= 9; ++k) {
      EXPECT_EQ(T.TIMAG(k, 1, 2), mean > 0 ? k : -k);
      EXPECT_EQ(T.TIARG(k, 1, 2), mean > 0 ? before[k - 1] : after[k - 1]);
    }
  }
}

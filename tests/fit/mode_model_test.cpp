// The sign of the transformation of a mode model; its fits are tested on the model file.
#include "fit/mode_model.h"

#include "modal/second_loop.h"
#include "store/rundata.h"
#include "support/console_capture.h"
#include "support/solve.h"

#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

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

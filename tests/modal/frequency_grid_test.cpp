#include "modal/frequency_grid.h"

#include "store/rundata.h"
#include "store/solvedata.h"

#include <gtest/gtest.h>

using namespace lcp;

TEST(FrequencyGrid, LaysTheFitRangeWithFivePointsBelow) {
  RUNDATA.resetInput();
  RUNDATA.model.MODFDP = true;
  RUNDATA.fit.CONSTT = false;
  layGrid();
  EXPECT_EQ(SOLVEDATA.grid.NFREQ, 107);
  EXPECT_TRUE(RUNDATA.fit.CONSTT);
  EXPECT_NEAR(gridFrequency(1), 0.5 * std::pow(10.0, -5 * 6.30102999566398 / 100), 1e-12);
  EXPECT_NEAR(gridFrequency(6), 0.5, 1e-13);
  EXPECT_NEAR(gridFrequency(106), 1e6, 1e-6);
  EXPECT_EQ(gridFrequency(107), 2000.0);
  EXPECT_TRUE(isConstantTransformStep(107) && !isConstantTransformStep(106));
  storeFrequency(3, 50.0);
  EXPECT_NEAR(SOLVEDATA.grid.WFREQ[3], 314.159265358979, 1e-11);
  EXPECT_NEAR(SOLVEDATA.grid.LOGF[3], 1.69897000433602, 1e-14);
  RUNDATA.fit.NFINC = 1012; // the most
  layGrid();
  EXPECT_EQ(SOLVEDATA.grid.NFREQ, 1019);
}

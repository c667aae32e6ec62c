#include "modal/frequency_grid.h"

#include "store/rundata.h"
#include "store/solvedata.h"
#include "support/child.h"

#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

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
}

TEST(FrequencyGrid, UnfittedModelsHaveFixedFrequencies) {
  for (const bool pi : {false, true}) {
    RUNDATA.resetInput();
    RUNDATA.line.SSFREQ = 50;
    RUNDATA.bergeron.FLOSS = 1000;
    RUNDATA.model.MODPI = pi;
    RUNDATA.model.MODBERG = !pi;
    layGrid();
    EXPECT_EQ(SOLVEDATA.grid.NFREQ, pi ? 1 : 2);
    EXPECT_EQ(gridFrequency(1), pi ? 50.0 : 1000.0);
    EXPECT_EQ(gridFrequency(SOLVEDATA.grid.NFREQ), 50.0);
  }
}

TEST(FrequencyGrid, RefusesWhatItCannotLay) {
  const struct {
    const char* what;
    void (*set)();
    const char* line;
  } cases[] = {
      {"no model", [] { RUNDATA.model = {}; }, "Unknown Model Type: -10\n"},
      {"1013 increments", [] { RUNDATA.fit.NFINC = 1013; },
       "Too Many Frequency Increments (1013), Maximum of 1012 Allowed!\n"},
      {"2147483647 increments", [] { RUNDATA.fit.NFINC = 2147483647; }, "Too Many Frequency"},
      {"start of 0", [] { RUNDATA.fit.FSTART = 0; }, "Curve Fitting Frequencies"},
      {"end at start", [] { RUNDATA.fit.FEND = 0.5; }, "Curve Fitting Frequencies"},
      {"transform at 0", [] { RUNDATA.fit.FCT = 0; }, "Frequency to Calculate"},
      {"1012 increments", [] { RUNDATA.fit.NFINC = 1012; }, ""},
  };
  for (const auto& c : cases) {
    const ChildResult r = runChild([&] {
      RUNDATA.resetInput();
      RUNDATA.model.MODFDM = true;
      c.set();
      layGrid();
    });
    EXPECT_EQ(r.status, *c.line == '\0' ? 0 : 1) << c.what;
    EXPECT_NE(r.console.find(c.line), std::string::npos) << c.what << r.console;
  }
}

// A series impedance that is a rational function, found again; whole runs hold the console.
#include "fit/series_fit.h"

#include "store/rundata.h"
#include "support/child.h"
#include "support/console_capture.h"
#include "support/propagation_case.h"
#include "support/sampled_functions.h"

#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

TEST(SeriesFit, FindsARationalImpedanceAndTellsWhenItDoesNot) {
  const Rational F{{-3e1, {-2e2, 9e3}, {-2e2, -9e3}}, {-8, {4e2, -3e2}, {4e2, 3e2}}, 0.2, 2e-6};
  laySampleGrid(60, 1, 1e6);
  RUNDATA.resetInput();
  RUNDATA.line.NC = 2;
  for (int k = 1; k <= 60; ++k) {
    const Complex z = F(Complex(0, SOLVEDATA.grid.WFREQ[k]));
    const Complex elements[] = {z, 3.0 * z, 2.0 * z, 5.0 * z}; // by columns
    SOLVEDATA.at.ZSTORE.store(k, CConstView(elements, 2), 2);
  }
  std::string text = consoleOf([] { EXPECT_LT(SERIESFIT(20, 1e-10), 1e-12); });
  text.replace(text.find("\n  Actual:    0.") + 16, 7, "ddd"); // behind it the exponent
  EXPECT_NE(text.find("\n  Actual:    0.ddd %          Actual:   3\n"), std::string::npos) << text;
  const SeriesModel& M = SERIESMODEL;
  ASSERT_EQ(M.NPZ, 3);
  EXPECT_EQ(M.ZFP[3], std::conj(M.ZFP[2]));
  EXPECT_EQ(M.ZFR(1, 2)[3], std::conj(M.ZFR(1, 2)[2]));
  EXPECT_LT(std::abs(M.ZFP[2] - F.poles[1]), 1e-9 * std::abs(F.poles[1]));
  EXPECT_LT(std::abs(M.ZFR(1, 2)[2] - 2.0 * F.residues[1]), 1e-6);
  EXPECT_LT(std::abs(M.ZFIT(60, 2, 1) - SOLVEDATA.at.ZSTORE(60, 2, 1)), 1e-11);
  SOLVEDATA.grid.WFIT = {}; // nothing is fitted: an error of 100 %
  consoleOf([] { EXPECT_EQ(SERIESFIT(140, 0.025), 1); });
  EXPECT_EQ(M.NPZ, NPMAX);
  EXPECT_TRUE(RUNDATA.run.WARNFLAG);
  RUNDATA.run.WARNFLAG = false;
  SOLVEDATA.at.ZSTORE(7, 2, 1) = std::nan("");
  EXPECT_EQ(runChild([] { SERIESFIT(2, 0.1); }).status, 1);
}

// Frequencies of a solve: the grid, and the table of Y and Z over frequency.
#include "modal/frequency_grid.h"

#include "base/constants.h"
#include "modal/second_loop.h"
#include "modal/yz_interp.h"
#include "store/rundata.h"
#include "store/solvedata.h"
#include "store/yz_table.h"
#include "support/console_capture.h"
#include "support/dense_functions.h"
#include "support/description.h"
#include "support/solve.h"
#include "support/whole_run.h"
#include "support/written_model.h"

#include <cmath>
#include <fmt/format.h>
#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

std::string tableLine(int n, const std::string& text, const std::string& model) {
  const std::string file = scratchFile("table.txt", text);
  return manualLineOf(
      n, "Data Entry Format:  Multiple Y and Z\nY,Z Input File Name: '" + file + "'\n", model);
}

// A table of one conductor with L = 1 uH/m and C = 10 pF/m, R = 1 mohm/m, at these frequencies.
std::string smallTable(const std::vector<double>& frequencies) {
  std::string text = fmt::format("\n{}\n1\n", frequencies.size());
  for (const double f : frequencies)
    text += fmt::format("{}\n1e-3\n{}\n0\n{}\n", f, TWOPI * f * 1e-6, TWOPI * f * 10e-12);
  return text;
}

} // namespace

TEST(FrequencyGrid, LaysTheFitRangeWithFivePointsBelow) {
  RUNDATA = {};
  RUNDATA.model.MODEL = ModelKind::Phase;
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
  RUNDATA.fit.NFINC = 1012; // the maximum
  layGrid();
  EXPECT_EQ(SOLVEDATA.grid.NFREQ, 1019);
}

TEST(YzInterp, GivesRowsAndTheWayBetweenThem) {
  readHere(description(tableLine(1, smallTable({10, 20, 20}), "")));
  LineMatrix Y, Z, P;
  const auto reactance = [&](double f, int flag, int k) {
    YZINTERP(f, Y, Z, P, flag, k);
    EXPECT_NEAR(Y(1, 1).imag() / Z(1, 1).imag(), 1e-5, 1e-17); // Y and Z are at the same frequency
    return Z(1, 1).imag() / (TWOPI * 1e-6);
  };
  EXPECT_EQ(reactance(60, 0, 2), 20); // row 2 at any frequency
  EXPECT_EQ(reactance(20, 1, 2), 20);
  EXPECT_NEAR(reactance(12.5, 1, 2), 12.5, 1e-13);
  EXPECT_EQ(reactance(20, 1, 3), 20);          // between equal frequencies
  EXPECT_EQ(reactance(1, 1, 1), 10);           // there is no row before the first
  EXPECT_NEAR(reactance(35, 1, 2), 35, 1e-13); // outside the rows as well
  for (const bool falling : {false, true}) {
    if (falling) readHere(description(tableLine(1, smallTable({20, 10}), "")));
    for (const auto& [f, at] : {std::pair{5.0, 10.0}, {10.0, 10.0}, {17.5, 17.5}, {1e6, 20.0}}) {
      tableConstants(f, Y, Z, P);
      EXPECT_NEAR(Z(1, 1).imag() / (TWOPI * 1e-6), at, 1e-13) << f;
    }
  }
}

TEST(FrequencyGrid, TheWayToARowIsThatOfALogarithmicGrid) {
  // The first mode is missing at first, so no search helps: it gives up at 0.00001, 0.10001 and so
  // on to 0.90001 of each step, and the constants are those of the last one. Z(2, 2) shows where.
  std::string text = "\n3\n2\n";
  for (const double f : {10.0, 20.0, 1000.0}) {
    const double w = TWOPI * f, L = f == 10 ? 0 : 1e-6;
    text += fmt::format("{}\n{}\n{}\n0\n{}\n0\n0\n0\n0\n0\n0\n0\n0\n1e-3\n{}\n0\n{}\n", f, L * 1e3,
                        w * L, w * 1e-11, w * 2e-6, w * 1e-11);
  }
  consoleOf([&] { solveFirstLoop(tableLine(2, text, phaseModel())); });
  for (int k = 2; k <= 3; ++k) {
    const double f = SOLVEDATA.at.ZSTORE(k, 2, 2).imag() / (TWOPI * 2e-6);
    EXPECT_NEAR(std::log10(f), k - 1 + 0.90001, 1e-7) << k;
  }
}

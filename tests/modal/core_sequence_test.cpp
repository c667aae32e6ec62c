#include "modal/core_sequence.h"

#include "base/constants.h"
#include "store/rundata.h"
#include "support/cable_systems.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

constexpr double F = 50.0;      // Hz
constexpr double SPACING = 0.3; // m
constexpr double RHO = 100.0;   // ohm m

void layCables(int n) {
  RUNDATA = {};
  RUNDATA.run.ISCABLE = CABLESYSTEM;
  RUNDATA.run.LINELEN = 1000;
  RUNDATA.ground.GRHO = RHO;
  RUNDATA.cable.NCABLE = n;
  for (int c = 1; c <= n; ++c) setSingleCore(c, SPACING * c + (c > 3 ? 2.0 : 0.0), 1.0);
}

// Of the elements of a block of two circuits on or off the diagonal, or all where they differ.
Complex mean(CConstView M, int i, int j) {
  Complex sum;
  double count = 0;
  for (int k = 0; k < 9; ++k) {
    const int row = (i - 1) / 3 * 3 + k / 3 + 1, column = (j - 1) / 3 * 3 + k % 3 + 1;
    if ((i - 1) / 3 == (j - 1) / 3 && (row == column) != (i == j)) continue;
    sum += M(row, column);
    ++count;
  }
  return sum / count;
}

} // namespace

// Three cables in a row, transposed, sheaths grounded at both ends: the loop of a core and of the
// sheath currents it drives, by the textbook's formulas with earth current at the depth of 658 m
// sqrt(rho / f).
TEST(CoreSequence, SingleCoreCablesByTextbookFormulas) {
  constexpr double CORE = 2e-7; // ohm m, so that the current fills the core
  layCables(3);
  for (int c = 1; c <= 3; ++c) RUNDATA.cable.CB[c].CBRHO[0] = CORE;
  solveCables(F);
  const double w = TWOPI * F;
  const double unit = w * 2e-7;
  const double core = CORE / (PI * 0.02 * 0.02);
  const double sheath = 2.8e-8 / (PI * (0.037 * 0.037 - 0.035 * 0.035));
  const double earth = w * PI / 2 * 1e-7;
  const double depth = 658 * std::sqrt(RHO / F);
  const double apart = SPACING * std::cbrt(2.0);
  const Complex self(core + earth, unit * std::log(depth / (0.02 * std::exp(-0.25))));
  const Complex shield(sheath + earth, unit * std::log(depth / 0.036));
  const Complex coupled(earth, unit * std::log(depth / 0.036)); // core and its own sheath
  const Complex beside(earth, unit * std::log(depth / apart));
  const auto seen = [&](double k) { // k others in phase, against
    return self + k * beside -
           (coupled + k * beside) * (coupled + k * beside) / (shield + k * beside);
  };
  const Grounding saved = groundSheaths(F);
  const CConstView Z = SOLVEDATA.first.ZMAT.view();
  ASSERT_EQ(RUNDATA.line.NC, 3);
  const Complex positive = Z(1, 1) - Z(1, 2);
  const Complex zero = Z(1, 1) + 2.0 * Z(1, 2);
  EXPECT_LT(std::abs(positive - seen(-1)), 0.01 * std::abs(positive));
  EXPECT_LT(std::abs(zero - seen(2)), 0.01 * std::abs(zero));
  const double capacitance = 2 * PI * 8.854e-12 * 2.5 / std::log(0.035 / 0.02);
  EXPECT_NEAR(SOLVEDATA.first.YMAT(2, 2).imag(), w * capacitance, 1e-4 * w * capacitance);
  restoreSheaths(saved, F);
  EXPECT_EQ(RUNDATA.line.NC, 6);
}

TEST(CoreSequence, TwoCircuitsAreTransposedAndTheSystemComesBack) {
  layCables(6);
  for (int c = 1; c <= 6; ++c) RUNDATA.cable.CB[c].CBGLAST = 2;
  solveCables(F);
  const LineMatrix plain = SOLVEDATA.first.ZMAT;
  for (int c = 1; c <= 6; ++c) RUNDATA.cable.CB[c].CBGLAST = c % 2;
  const LineResult system = solveCables(F);
  ASSERT_TRUE(hasCoreSequences());
  const Grounding saved = groundSheaths(F);
  const LineMatrix& Z = SOLVEDATA.first.ZMAT;
  for (int i = 1; i <= 6; ++i) {
    for (int j = 1; j <= 6; ++j) {
      const Complex expected = mean(plain, i, j);
      EXPECT_LT(std::abs(Z(i, j) - expected), 1e-13 * std::abs(expected)) << i << j;
    }
  }
  restoreSheaths(saved, F);
  EXPECT_EQ(RUNDATA.line.NC, system.n);
  EXPECT_EQ(distance(corner(SOLVEDATA.first.ZMAT, system.n), system.Z), 0);
  RUNDATA.cable.NCABLE = 4;
  EXPECT_FALSE(hasCoreSequences());
  RUNDATA.cable.NCABLE = 2;
  EXPECT_TRUE(hasCoreSequences());
  RUNDATA.cable.ANYOVHD = true;
  EXPECT_FALSE(hasCoreSequences());
}

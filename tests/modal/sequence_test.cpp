// Load-flow values, sequences of cable cores, and the long-line correction of single-conductor
// lines.
//
// The pi file of a line is tested against the exact circuit elsewhere.
#include "cable/four_wire.h"
#include "modal/core_sequence.h"
#include "modal/long_line.h"
#include "modal/report_modes.h"
#include "modal/sequence.h"
#include "store/rundata.h"
#include "store/solvedata.h"
#include "support/cable_systems.h"

#include <array>
#include <cmath>
#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

LineMatrix Y, Z;

// Circuits of three conductors with one self value, one mutual value, and one value between the
// circuits.
void balanced(LineMatrix& M, Complex self, Complex mutual, Complex between) {
  for (int i = 1; i <= 6; ++i) {
    for (int j = 1; j <= 6; ++j)
      M(i, j) = i == j ? self : ((i - 1) / 3 == (j - 1) / 3 ? mutual : between);
  }
}

constexpr double F = 50.0; // Hz

void layCables(int n, bool piped) {
  RUNDATA = {};
  RUNDATA.run.ISCABLE = CABLESYSTEM;
  RUNDATA.run.LINELEN = 1000;
  CableTable& T = RUNDATA.cable;
  T.NCABLE = n;
  if (piped) T.pipe = {1, -3, 1.5, n, 1, 0, 0.4, 0.41, 0.42, 2e-7, 200, 2.5, 1, 0, 2.5, 1};
  T.NPIPE = piped;
  for (int c = 1; c <= n; ++c) {
    setSingleCore(c, 0.3 * c + (c > 3 ? 2.0 : 0.0), 1.0);
    if (!piped) continue;
    Cable& C = T.CB[c];
    C.CBPIPE = 1;
    C.CBX = (C.CBPR = 0.22) * std::cos(C.CBPTH = 1.9 * c);
    C.CBY = C.CBPR * std::sin(C.CBPTH);
  }
}

void ground(int pipe, int even, int odd) {
  RUNDATA.cable.pipe.PIPEGND = pipe;
  for (int c = 1; c <= 6; ++c) RUNDATA.cable.CB[c].CBGLAST = c % 2 == 0 ? even : odd;
}

// Element (i, j) of a matrix of circuits that are transposed individually and against each other.
Wide transposed(const Dense& M, std::size_t i, std::size_t j) {
  if (M.size() == 2) return M[i][j];
  Wide sum, count;
  for (std::size_t k = 0; k < 9; ++k) {
    const std::size_t row = i / 3 * 3 + k / 3, column = j / 3 * 3 + k % 3;
    const bool counts = i / 3 != j / 3 || (row == column) == (i == j);
    sum += counts ? M[row][column] : 0;
    count += counts ? 1 : 0;
  }
  return sum / count;
}

} // namespace

TEST(Sequence, LoadFlowDataOfWhichLines) {
  RUNDATA.resetInput();
  RUNDATA.run.ISCABLE = OVERHEADLINE;
  ConductorTable& C = RUNDATA.cond;
  for (const auto& [n, circuits, towers, has] : {std::array{1, 1, 1, 0},
                                                 {2, 1, 1, 1},
                                                 {3, 1, 3, 1},
                                                 {4, 1, 1, 0},
                                                 {6, 1, 1, 0},
                                                 {6, 2, 1, 1},
                                                 {6, 2, 2, 1},
                                                 {6, 2, 3, 0}}) {
    RUNDATA.line.NC = n;
    C.NCIRC = circuits;
    C.NTOWER = towers;
    EXPECT_EQ(hasLoadFlowSection(), has == 1) << n << circuits << towers;
  }
}

TEST(Sequence, LoadFlowBlocksOfADoubleCircuit) {
  balanced(Z, {3, 30}, {1, 10}, {0.5, 5});
  balanced(Y, {0, 3e-3}, {0, -5e-4}, {0, -1e-4});
  RUNDATA.resetInput();
  RUNDATA.line.NC = 6;
  RUNDATA.run.LINELEN = 2;
  RUNDATA.display.VBASEDISP = 100;
  RUNDATA.display.MVABASEDISP = 50;
  LoadFlowData data;
  formLoadFlowData(data, Y, Z, Y, Z, true);
  ASSERT_EQ(data.count, 10);
  EXPECT_TRUE(data.perUnit);
  const double KZ = 50.0 / 1e4;
  EXPECT_EQ(data.blocks[0].label, "  Positive Sequence (Long-Line Corrected) of Circuit 1");
  EXPECT_EQ(data.blocks[8].label, "  Zero Sequence of Circuit 2");
  EXPECT_NEAR(data.blocks[5].values.R, KZ * 4, 1e-14);
  EXPECT_NEAR(data.blocks[5].values.X, KZ * 40, 1e-13);
  EXPECT_NEAR(data.blocks[5].values.B, 7e-3 / KZ, 1e-12);
  EXPECT_NEAR(data.blocks[5].values.Zc, KZ * std::sqrt(40 / 7e-3), 1e-12);
  EXPECT_NEAR(data.blocks[9].values.B, 6e-4 / KZ, 1e-12); // a mutual susceptance by magnitude
  EXPECT_EQ(data.circuits, 2);
  EXPECT_NEAR(data.simulator[1].X, 40, 1e-12); // the simulator gets ohms
}

TEST(LongLine, CorrectsEachLineByItselfAndShowsPositiveParts) {
  static LineMatrix Y, Z, YLC, ZLC;
  const Complex y(1e-11, 4e-9), z(1e-3, 5e-4);
  const struct {
    Complex y, z;
    double length;
    bool shown;
  } cases[] = {{y, z, 1, true},
               {y, z, 1e4, true},
               {y, 4.0 * z, 1e4, true}, // another line
               {{-1e-9, 4e-9}, z, 1e4, false},
               {{1e-11, 0}, z, 1e4, false},
               {y, {0, 5e-4}, 1e4, false},
               {y, {1e-3, -5e-4}, 1e4, false},
               {y, z, 1e9, false}}; // no reflection: Z fades
  for (const auto& c : cases) {
    bool shown = !c.shown;
    Y(1, 1) = c.y;
    Z(1, 1) = c.z;
    LONGCOR(Y, Z, c.length, YLC, ZLC, 1, shown);
    EXPECT_EQ(shown, c.shown) << &c - cases;
    EXPECT_TRUE(std::isfinite(std::abs(YLC(1, 1))) && std::isfinite(std::abs(ZLC(1, 1))));
    const Complex u2 = c.y * c.z * c.length * c.length;
    if (c.length < 1e9) {
      EXPECT_LT(std::abs(ZLC(1, 1) / c.z - 1.0 - u2 / 6.0), 0.01 * std::norm(u2) + 1e-9);
    }
  }
}

TEST(CoreSequence, CircuitsAreGroundedAndTransposedAndTheSystemComesBack) {
  for (const auto& [n, piped] : {std::pair{2, false}, {3, false}, {3, true}, {6, false}}) {
    layCables(n, piped);
    ground(1, 2, 2);
    const LineResult plain = solveCables(F);
    ASSERT_EQ(plain.n, n);
    ground(0, 0, 1);
    const LineResult system = solveCables(F);
    ASSERT_GT(system.n, n);
    ASSERT_TRUE(hasCoreSequences());
    const Grounding saved = groundSheaths(F);
    for (const auto& [M, all] :
         {std::pair{&SOLVEDATA.first.ZMAT, &plain.Z}, {&SOLVEDATA.first.YMAT, &plain.Y}}) {
      const Dense expected = formed(all->size(), [whole = all](std::size_t i, std::size_t j) {
        return transposed(*whole, i, j);
      });
      EXPECT_LT(distance(corner(*M, n), expected), 1e-13) << n << piped;
    }
    restoreSheaths(saved, F);
    EXPECT_EQ(RUNDATA.line.NC, system.n);
    EXPECT_EQ(distance(corner(SOLVEDATA.first.ZMAT, system.n), system.Z), 0);
  }
  RUNDATA.cable.ANYOVHD = true;
  EXPECT_FALSE(hasCoreSequences());
  layCables(4, false);
  EXPECT_FALSE(hasCoreSequences());
}

// Load flow values, and the long-line correction of lines of one conductor: long ones, and what of
// them is shown. The pi file of a line is tested for the exact circuit.
#include "modal/sequence.h"

#include "modal/long_line.h"
#include "store/rundata.h"
#include "store/solvedata.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace lcp;

namespace {

LineMatrix Y, Z;

// Circuits of three, of a value of their own within, mutual ones and one value between the two.
void balanced(LineMatrix& M, Complex self, Complex mutual, Complex between) {
  for (int i = 1; i <= 6; ++i) {
    for (int j = 1; j <= 6; ++j)
      M(i, j) = i == j ? self : ((i - 1) / 3 == (j - 1) / 3 ? mutual : between);
  }
}

LoadFlowData dataOf(int conductors, double length, double VBASE, double MVABASE, bool corrected) {
  RUNDATA.resetInput();
  RUNDATA.line.NC = conductors;
  RUNDATA.run.LINELEN = length;
  RUNDATA.display.VBASEDISP = VBASE;
  RUNDATA.display.MVABASEDISP = MVABASE;
  LoadFlowData data;
  formLoadFlowData(data, Y, Z, Y, Z, corrected);
  return data;
}

} // namespace

TEST(Sequence, LoadFlowBlocksOfADoubleCircuit) {
  balanced(Z, {3, 30}, {1, 10}, {0.5, 5});
  balanced(Y, {0, 3e-3}, {0, -5e-4}, {0, -1e-4});
  const LoadFlowData data = dataOf(6, 2, 100, 50, true);
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
  EXPECT_NEAR(data.simulator[1].X, 40, 1e-12); // the simulator is told ohms
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
               {y, z, 1e9, false}}; // no wave comes back: Z fades
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

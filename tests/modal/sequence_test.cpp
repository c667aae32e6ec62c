#include "modal/sequence.h"

#include "store/rundata.h"

#include <array>
#include <gtest/gtest.h>
#include <vector>

using namespace lcp;

namespace {

// Two balanced circuits: self and mutual value within, one value between them.
void balanced(LineMatrix& M, Complex self, Complex mutual, Complex between) {
  for (int i = 1; i <= 6; ++i) {
    for (int j = 1; j <= 6; ++j)
      M(i, j) = i == j ? self : ((i - 1) / 3 == (j - 1) / 3 ? mutual : between);
  }
}

LineMatrix Y, Z;

void prepare(int conductors) {
  RUNDATA.resetInput();
  RUNDATA.line.NC = conductors;
  RUNDATA.run.LINELEN = conductors == 6 ? 2.0 : 1.0;
}

} // namespace

TEST(Sequence, LoadFlowBlocksOfADoubleCircuit) {
  prepare(6);
  RUNDATA.display.VBASEDISP = 100;
  RUNDATA.display.MVABASEDISP = 50;
  balanced(Z, {3, 30}, {1, 10}, {0.5, 5});
  balanced(Y, {0, 3e-3}, {0, -5e-4}, {0, -1e-4});
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
  EXPECT_NEAR(data.simulator[1].X, 40, 1e-12); // the simulator is told ohms
}

TEST(Sequence, ABipoleHasAMetallicAndAGroundMode) {
  prepare(2);
  RUNDATA.display.MVABASEDISP = 100; // one base alone is none
  Z(1, 1) = Z(2, 2) = {3, 30};
  Z(1, 2) = Z(2, 1) = {1, 10};
  Y(1, 1) = Y(2, 2) = {0, -3e-3}; // not a line: no surge impedance
  Y(1, 2) = Y(2, 1) = 0;
  LoadFlowData data;
  formLoadFlowData(data, Y, Z, Y, Z, false);
  ASSERT_EQ(data.count, 2);
  EXPECT_FALSE(data.perUnit);
  EXPECT_EQ(RUNDATA.display.MVABASEDISP, 1.0);
  EXPECT_NEAR(data.blocks[0].values.X, 20, 1e-12);
  EXPECT_NEAR(data.blocks[1].values.X, 40, 1e-12);
  EXPECT_TRUE(data.blocks[1].parted);
  EXPECT_EQ(data.blocks[1].values.Zc, 0.0);
  EXPECT_EQ(data.circuits, 0);
}

TEST(Sequence, SectionsAreForThreePhaseLines) {
  for (const auto& [nodes, circuits, towers, loadFlow] : std::vector<std::array<int, 4>>{
           {3, 9, 9, 1}, {2, 9, 9, 1}, {4, 1, 1, 0}, {6, 2, 2, 1}, {6, 3, 1, 0}, {6, 2, 3, 0}}) {
    prepare(nodes);
    RUNDATA.cond.NCIRC = circuits;
    RUNDATA.cond.NTOWER = towers;
    EXPECT_EQ(hasLoadFlowSection(), loadFlow == 1) << nodes << circuits << towers;
  }
}

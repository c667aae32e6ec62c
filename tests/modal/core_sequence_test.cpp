#include "modal/core_sequence.h"

#include "store/rundata.h"
#include "support/cable_systems.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

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

// Element (i, j) of a matrix of circuits that are transposed by themselves and against each other.
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
      const Dense expected =
          formed(all->size(), [&](std::size_t i, std::size_t j) { return transposed(*all, i, j); });
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

#include "cable/crossbonding.h"

#include "cable/numbering.h"
#include "store/rundata.h"
#include "support/line_matrices.h"

#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

CableMatrix Z, Y, before;
CableNumbering N;

// Four cables with core and sheath, the second one between those of the group, and a pipe.
void setSystem(int mark, int group) {
  RUNDATA = {};
  RUNDATA.cable.NCABLE = 4;
  RUNDATA.cable.NPIPE = 1;
  for (int c = 1; c <= 4; ++c) {
    Cable& C = RUNDATA.cable.CB[c];
    C.CBNLAY = 4;
    C.CBGROUP = c == 2 ? 0 : group;
    C.CBXBOND = {0, mark, 1, 1}; // without conductors 3 and 4
  }
  numberConductors(N);
  std::mt19937 random(7);
  fillRandom(Z, N.total, N.total, random);
  before = Y = Z;
}

} // namespace

TEST(Crossbonding, AveragesThePlacesOfTheSheaths) {
  // conductors at the nine positions, by section: sheaths 2, 6, 8 rotate
  const int places[3][9] = {
      {1, 2, 3, 4, 5, 6, 7, 8, 9}, {1, 8, 3, 4, 5, 2, 7, 6, 9}, {1, 6, 3, 4, 5, 8, 7, 2, 9}};
  SOLVEDATA.first.ISTATUS = true;
  for (const int mark : {1, 2}) {
    setSystem(mark, 1);
    XBOND(Z, Y, N);
    for (int n = 0; n < 81; ++n) {
      Complex sum;
      for (const auto& place : places) sum += before(place[n / 9], place[n % 9]);
      EXPECT_LT(std::abs(Z(n / 9 + 1, n % 9 + 1) - sum / 3.0), 1e-15) << n;
      EXPECT_EQ(Y(n / 9 + 1, n % 9 + 1), Z(n / 9 + 1, n % 9 + 1));
    }
    EXPECT_EQ(RUNDATA.cable.CB[1].CBELIM1, mark == 1); // 2: the sheath stays
  }
  setSystem(1, 0);
  XBOND(Z, Y, N);
  EXPECT_TRUE(std::equal(std::begin(Z.elements), std::end(Z.elements), before.elements));
  EXPECT_EQ(RUNDATA.cable.CB[1].CBGLAST, 0);
}

TEST(Crossbonding, GroundsTheCrossbondedSheath) {
  // CBGLAST, conductors; CBGLAST and CBELIM1 to CBELIM3 after; 2 for as before
  const int rows[][6] = {{0, 2, 3, 1, 0, 0}, {3, 2, 3, 1, 2, 2}, {1, 3, 3, 1, 1, 2},
                         {1, 4, 3, 1, 0, 1}, {1, 2, 1, 2, 2, 2}, {2, 3, 2, 2, 2, 2}};
  for (int n = 0; n < 12; ++n) {
    const auto& row = rows[n / 2];
    const bool before = n % 2 == 1;
    setSystem(1, 1);
    Cable& C = RUNDATA.cable.CB[2]; // in no group itself
    C.CBNLAY = 2 * row[1];
    C.CBGLAST = row[0];
    C.CBELIM1 = C.CBELIM2 = C.CBELIM3 = before;
    numberConductors(N);
    for (const bool first : {false, true, true}) {
      SOLVEDATA.first.ISTATUS = first;
      XBOND(Z, Y, N);
      EXPECT_EQ(C.CBGLAST, row[first ? 2 : 0]);
    }
    const bool after[] = {C.CBELIM1, C.CBELIM2, C.CBELIM3};
    for (int k = 0; k < 3; ++k)
      EXPECT_EQ(after[k], row[3 + k] == 2 ? before : row[3 + k]) << n << k;
  }
}

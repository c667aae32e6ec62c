#include "cable/crossbonding.h"

#include "cable/numbering.h"
#include "store/rundata.h"
#include "support/child.h"
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
  // who is in the places of the nine conductors, by section: sheaths 2, 6, 8 rotate
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
  // CBGLAST, conductors; CBGLAST and CBELIM1 to CBELIM3 after, the latter false, true, true before
  const int rows[][6] = {{0, 2, 3, 1, 0, 0}, {3, 2, 3, 1, 1, 1}, {1, 3, 3, 1, 1, 1},
                         {1, 4, 3, 1, 0, 1}, {1, 2, 1, 0, 1, 1}, {2, 3, 2, 0, 1, 1}};
  for (const auto& row : rows) {
    setSystem(1, 1);
    Cable& C = RUNDATA.cable.CB[2]; // in no group itself
    C.CBNLAY = 2 * row[1];
    C.CBGLAST = row[0];
    C.CBELIM2 = C.CBELIM3 = true;
    numberConductors(N);
    for (const bool first : {false, true, true}) {
      SOLVEDATA.first.ISTATUS = first;
      XBOND(Z, Y, N);
      EXPECT_EQ(C.CBGLAST, row[first ? 2 : 0]);
    }
    EXPECT_EQ((std::array<int, 3>{C.CBELIM1, C.CBELIM2, C.CBELIM3}),
              (std::array{row[3], row[4], row[5]}));
  }
}

TEST(Crossbonding, GroupsOfOtherThanThreeEndTheRun) {
  const auto expect = [](const char* what, int group, void (*change)(CableTable&)) {
    setSystem(1, group);
    change(RUNDATA.cable);
    const std::string stars(37, '*'), console = runChild([] { XBOND(Z, Y, N); }).console;
    EXPECT_EQ(console, *what == 0 ? ""
                                  : lines({stars, "Error: Crossbonding/transposition of cables", "",
                                           "Check if there are three conductors in each", what,
                                           stars + "*"}));
  };
  const char* conductors = "cross-bonded/transposed group";
  expect("", 4, [](CableTable&) {});
  expect("", 5, [](CableTable& T) { T.CB[1].CBXBOND = T.CB[3].CBXBOND = T.CB[4].CBXBOND = {}; });
  expect(conductors, 5, [](CableTable&) {});
  expect(conductors, 1, [](CableTable& T) { T.CB[2].CBGROUP = -1; });
  expect(conductors, 1, [](CableTable& T) { T.CB[2].CBGROUP = 1; });    // four
  expect(conductors, 1, [](CableTable& T) { T.CB[4].CBGROUP = 0; });    // two
  expect(conductors, 1, [](CableTable& T) { T.CB[4].CBXBOND[0] = 2; }); // a core alone
  expect("Pipe", 1, [](CableTable& T) { T.CB[3].CBPIPE = 1; });
}

// The conductor table that results from towers, bundles, ground wires and external files.
#include "input/bundles.h"
#include "store/rundata.h"
#include "support/description.h"

#include <cmath>
#include <fmt/format.h>
#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

const ConductorTable& C = RUNDATA.cond;
const std::string OPENTOWER = "Line Constants Tower\n{\n";

std::vector<int> maps() { return {C.CMAP.entries.begin(), C.CMAP.entries.begin() + C.NCOND}; }

// 49 numbers; the given ones first, the rest 0.
std::string externalRecord(std::string_view numbers, int given) {
  return fmt::format("{} {}*0\n", numbers, 49 - given);
}

void readTower(const std::string& circuitLines, const std::string& towerLines = "", int nodes = 3) {
  readHere(description(summary(nodes) + threePhaseTower(circuitLines, towerLines)));
}

void expectNear(const std::vector<double>& got, const std::vector<double>& expected) {
  ASSERT_EQ(got.size(), expected.size());
  for (std::size_t i = 0; i < got.size(); ++i) EXPECT_NEAR(got[i], expected[i], 1e-12) << i;
}

} // namespace

TEST(Tower, RegularBundleSpreadsRoundTheTowerPoint) {
  readTower("Sub-ConductorsPerBundle: 4\n{\nBundleSpacing: 0.4\n}\n");
  ASSERT_EQ(maps(), (std::vector<int>{0, 0, 0, 1, 2, 3, 1, 2, 3, 1, 2, 3}));
  for (int c = 1; c <= 3; ++c) {
    const double x = 10.0 * (c - 2);
    expectNear(values(C.CX[c], C.CY[c], C.CX[c + 3], C.CY[c + 6], C.CYAVG[c + 9], C.CRAD[c + 9]),
               values(x + 0.2, 20.2, x - 0.2, 19.8, 15.8, 0.015));
    EXPECT_NEAR(C.CRDC[c + 9], 0.05e-3, 1e-18);
  }
  for (int s = 2; s <= 15; ++s) {
    for (int k = 1; k <= s; ++k) {
      const Offset a = regularOffset(k, s, 0.45), b = regularOffset(k % s + 1, s, 0.45);
      EXPECT_NEAR(std::hypot(a.dx - b.dx, a.dy - b.dy), 0.45, 1e-12) << s << ' ' << k;
    }
  }
}

TEST(Tower, ExplicitOffsetsMoveMainConductorsToo) {
  readTower("Sub-ConductorsPerBundle: 2\n{\nP1 : -0.2 0.1\nP2 : 0.2\nP3 : 100 100\n}\n");
  ASSERT_EQ(C.NCOND, 6);
  expectNear(values(C.CX[1], C.CY[1], C.CX[6], C.CY[6]), values(-10.2, 20.1, 10.2, 20.0));
}

TEST(Tower, GroundWiresTakeTheirData) {
  const auto read = [&](const std::string& keys, int nodes = 3) {
    readTower("ShuntConductance: 1e-11\n", "GroundWires: " + keys + "}\n", nodes);
  };
  const std::string data = "DCResistance: 3\nRadius: 0.005\nGW2 DCResistance: 1\n"
                           "GW2 Radius: 0.007\nSag: 3\nP1 : -5 30\n";
  const std::string unique = "Unique Ground Wires: 0\n", second = "P2 : 5 30\n";
  read("2\n{\n" + data + second); // eliminated by default, all equal
  EXPECT_EQ(maps(), (std::vector<int>{0, 0, 0, -1, -1}));
  EXPECT_EQ(values(C.CRAD[5], C.CSHUNT[4], C.CYAVG[5], C.NCIRC), values(0.005, 0, 28, 1));
  read("2\n{\n" + unique + data + second);
  EXPECT_EQ(values(C.CRAD[4], C.CRAD[5]), values(0.005, 0.007));
  EXPECT_NEAR(C.CRDC[5], 1e-3, 1e-18);
  read("1\n{\n" + unique + data); // the second wire's data are ignored
  EXPECT_EQ(values(C.CRAD[4], C.CRAD[5]), values(0.005, 0));
  read("2\n{\nEliminate Ground Wires: 0\nGround Wire Phase Information: 4 5\n" + data + second, 5);
  EXPECT_EQ(maps(), (std::vector<int>{0, 0, 0, -2, -2}));
  EXPECT_EQ(values(C.CSHUNT[4], C.NCIRC, C.CCIRC[5]), values(1e-11, 2, 2));
}

TEST(Tower, ConductorShapes) {
  const std::string none = "Circuit\n{\nConductors: 0\nRadius: 9\nStrand Radius: 9\n"
                           "Conductor Relative Permeability: 9\n}\n"; // leaves no values behind
  readHere(description(summary(3) + OPENTOWER + none + "}\n" + threePhaseTower()));
  EXPECT_EQ(values(C.NCOND, C.CMUR[1], C.CSTRND[1], C.ALL3PH), values(3, 1, 0, 0));
  readTower("Inner Radius: 0.010\nStrand Radius: 0.002\nNumber of Outer Strands: 18\n"
            "Total Number of Strands: 37\nConductor Relative Permeability: 1.5\n");
  for (int i = 1; i <= 3; ++i) {
    expectNear(values(C.CTUBE[i], C.CSTRND[i], C.CTHICK[i], C.CNOUT[i], C.CNTOT[i], C.CMUR[i]),
               values(1, 1, 0.005, 18, 37, 1.5));
  }
}

TEST(Tower, ExternalFileMakesEntriesBundleByBundle) {
  const std::string path = scratchFile(
      "external.txt",
      externalRecord("1 1 1 1 0 0 0.01 0.1 1e-12 1 -5 20 3 0 0 0 2 0 0.4", 19) +
          externalRecord("1 1 1 2 2 0 0.01 0.1 1e-12 1 5 20 3 7 6 0.003 2 1 0 -0.1 0 0.1 0.05",
                         23) +
          externalRecord("1 2 0 3 1 0.006 0.01 0.1 0 1\n 15 20 3 0 0 0 0 0 0", 19) +
          externalRecord("2 1 0 0.005 2 1 2 0 30", 9) +
          externalRecord("2 0 4 0.005 2 1 2 0 35", 9));
  readHere(description(summary(4) + OPENTOWER + "External file name: " + path + "\n}\n"));
  // equivalent conductors in node order, bundle members, eliminated wire
  ASSERT_EQ(maps(), (std::vector<int>{0, 0, 0, -2, 1, 2, -1}));
  EXPECT_EQ(values(C.NCIRC, C.ALL3PH, C.CTRANSP[1]), values(3, 0, 1));
  expectNear(values(C.CX[1], C.CX[5], C.CX[2], C.CX[6]), values(-4.8, -5.2, 4.9, 5.1));
  expectNear(values(C.CYAVG[6], C.CYAVG[7]), values(18.05, 86 / 3.0));
  expectNear(values(C.CSTRND[2], C.CTUBE[2], C.CNTOT[2]), values(1, 0, 7));
  expectNear(values(C.CTUBE[3], C.CTHICK[3], C.CRDC[7]), values(1, 0.004, 0.002));
}

TEST(Library, RowsOfBothFormats) {
  const std::string old = scratchFile("old.lib", "name radius resistance\nthree 0.01 0.1\n"
                                                 "four 0.02 0.2 1.5\nfive 0.03 0.3 1.5 0.02\n");
  const std::string fresh =
      scratchFile("new.lib", "#Format 1\nx text text\nacsr 10 0.1 19 2 1.2\n");
  readTower("Library : " + old + "\nName: four\n");
  expectNear(values(C.CRAD[2], C.CRDC[2], C.CMUR[2], C.CTUBE[2]), values(0.02, 0.2e-3, 1.5, 0));
  readTower("Library : " + old + "\nName: five\n");
  expectNear(values(C.CTUBE[2], C.CTHICK[2]), values(1, 0.01));
  const std::string holes = scratchFile("holes.lib", "none 0.02 , , 0.03\nmu 0.02 0.2 , 0.004\n");
  readTower("Library : " + holes + "\nName: none\n"); // separators keep the old values
  expectNear(values(C.CRAD[2], C.CRDC[2], C.CMUR[2], C.CTUBE[2]), values(0.02, 0.05e-3, 1, 0));
  readTower("Library : " + holes + "\nName: mu\n");
  expectNear(values(C.CRDC[2], C.CMUR[2], C.CTHICK[2]), values(0.2e-3, 1, 0.016));
  readTower("Library : " + fresh + "\nName: acsr\n"); // 12 strands of 2 mm round a circle of 8 mm
  expectNear(values(C.CSTRND[3], C.CRAD[3], C.CNTOT[3], C.CNOUT[3], C.CMUR[3]),
             values(1, 0.01, 19, 12, 1.2));
}

TEST(Conductors, BundleMembersAndKeptWiresFollowTheirNodes) {
  // Circuit 1 at nodes 5 1 3 with bundles of two, an eliminated wire, a kept wire at node 2,
  // circuit 2 of one conductor at node 4; node p is at x = 10 p.
  readHere(description(
      summary(5) + "Line Constants Tower\n{\nCircuit\n{\nConductors: 3\n" +
      "Conductor Phase Information: 5 1 3\nRadius: 0.01\nP1 : 50 20\nP2 : 10 20\nP3 : 30 20\n" +
      "Sub-ConductorsPerBundle: 2\n{\nBundleSpacing: 0.4\n}\n}\nGroundWires: 1\n{\nP1 : 0 40\n}\n" +
      "GroundWires: 1\n{\nEliminate Ground Wires: 0\nGround Wire Phase Information: 2\n" +
      "P1 : 20 30\n}\nCircuit\n{\nConductors: 1\nConductor Phase Information: 4\nP1 : 40 20\n}\n" +
      "}\n"));
  EXPECT_EQ(values(C.NCOND, C.CMAP[9]), values(9, MAPELIMINATED));
  for (int p = 1; p <= 5; ++p) {
    EXPECT_EQ(C.CPHASE[p], p);
    EXPECT_NEAR(C.CX[p], 10.0 * p + (p % 2 == 1 ? 0.2 : 0.0), 1e-12) << p;
  }
  for (int e = 6; e <= 8; ++e) EXPECT_NEAR(C.CX[e], C.CX[C.CMAP[e]] - 0.4, 1e-12) << e;
}

// Checks and order of the conductor table behind the last line.
#include "input/reader_cases.h"
#include "store/rundata.h"

#include <fmt/format.h>

using namespace lcp;
using namespace lcp::test;

namespace {

std::string stars(Texts texts) {
  return lines({"", STARS, "Corvo.exe: ERROR"}) + lines(texts) + STARS + "\n";
}

std::string mismatch(int nodes, int conductors) {
  return stars(
      {"# of Equivalent Conductors in Line Constants", " does not match # of Connection Nodes!",
       fmt::format(" # of Connection Nodes:             {:4}", nodes),
       fmt::format(" # of Conductors in Line Constants: {:4}", conductors),
       "The Number of Connection Nodes is defined in the", "ORVEX page where the corvo_interface",
       "component connects conductors to the circuit.", "The Number of Conductors is defined by",
       "the number of towers and conductors in each tower.",
       "(note Ground wires which are eliminated are not", "counted as equivalent conductors)."});
}

std::string samePlace(int i, int j) {
  return ruled({fmt::format("Conductors {} and {} have identical positions.", i, j),
                "If you are using multiple tower components, ensure",
                "the x-coordinate of each tower centre in the right-",
                "of-way is properly entered."});
}

std::string badPhase(const std::string& which, const std::string& why) {
  return stars({"Incorrect Phasing Information for Conductors", " in Line Constants!", which, why});
}

std::string circuit(const std::string& phases, const std::string& secondX = "0") {
  return "Line Constants Tower\n{\nCircuit\n{\nConductors: 3\nConductor Phase Information: " +
         phases + "\nP1 : -10 20\nP2 : " + secondX + " 20\nP3 : 10 20\n}\n}\n";
}

} // namespace

TEST(PostRead, FailedChecksEndTheRun) {
  const auto beyond = [](int v) {
    return badPhase(fmt::format(" Phasing Value of              {:4}", v),
                    " Invalid since there are only:    3 Conductors!");
  };
  const std::string near = circuit("1 2 3", "-9.99999999999"), halo = "HALO Options\n{\n}\n";
  const std::string full = "Line Constants Tower\n{\nCircuit\n{\nConductors: 48\n"
                           "Sub-ConductorsPerBundle: 15\n{\n}\n}\n}\n"; // 720, all at one place
  check({
      {summary(2) + circuit("1 2 3"), mismatch(2, 3)},
      {summary(3), mismatch(3, 0)},
      {summary(3) + near, samePlace(2, 1)},
      {summary(3) + near + halo, samePlace(2, 1)},
      {summary(3) + threePhaseTower("Sub-ConductorsPerBundle: 2\n{\nBundleSpacing: 0\n}\n"),
       samePlace(4, 1)},
      {full, samePlace(2, 1)},
      {summary(3) + circuit("0 2 3"), beyond(0)},
      {summary(3) + circuit("4 2 3"), beyond(4)},
      {summary(3) + circuit(""), beyond(0)},
      {summary(3) + circuit("1 1 3"),
       badPhase(" Connection Information for Conductor #     2", " Does not Exist!")},
      {summary(1) + circuit("9 9 9") + halo}, // no conductors are counted
  });
  const ChildResult shortLine = readInChild(description(""), 0, 1e-11);
  EXPECT_EQ(shortLine.console, ruled({"Line length is very small. Ensure correct line length"}));
  EXPECT_EQ(shortLine.status, 1);
}

TEST(PostRead, BundleMembersAndKeptWiresFollowTheirNodes) {
  // Circuit 1 at nodes 5 1 3 with bundles of two, an eliminated wire, a kept wire at node 2,
  // circuit 2 of one conductor at node 4; node p stands at 10 p.
  readHere(description(
      summary(5) + "Line Constants Tower\n{\nCircuit\n{\nConductors: 3\n" +
      "Conductor Phase Information: 5 1 3\nRadius: 0.01\nP1 : 50 20\nP2 : 10 20\nP3 : 30 20\n" +
      "Sub-ConductorsPerBundle: 2\n{\nBundleSpacing: 0.4\n}\n}\nGroundWires: 1\n{\nP1 : 0 40\n}\n" +
      "GroundWires: 1\n{\nEliminate Ground Wires: 0\nGround Wire Phase Information: 2\n" +
      "P1 : 20 30\n}\nCircuit\n{\nConductors: 1\nConductor Phase Information: 4\nP1 : 40 20\n}\n" +
      "}\n"));
  const ConductorTable& C = RUNDATA.cond;
  ASSERT_EQ(C.NCOND, 9);
  for (int p = 1; p <= 5; ++p) {
    EXPECT_EQ(C.CPHASE[p], p);
    EXPECT_NEAR(C.CX[p], 10.0 * p + (p % 2 == 1 ? 0.2 : 0.0), 1e-12) << p;
  }
  for (int e = 6; e <= 8; ++e) EXPECT_NEAR(C.CX[e], C.CX[C.CMAP[e]] - 0.4, 1e-12) << e;
  EXPECT_EQ(C.CMAP[9], MAPELIMINATED);
}

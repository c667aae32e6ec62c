// Checks and order of the conductor table behind the last line.
#include "store/rundata.h"
#include "support/description.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

const std::string STARS(43, '*');
const std::string RULE(53, '=');

std::string stars(const std::string& text) {
  return lines({"", STARS, "Corvo.exe: ERROR"}) + text + STARS + "\n";
}

std::string mismatch(int nodes, int conductors) {
  return stars(lines(
      {"# of Equivalent Conductors in Line Constants", " does not match # of Connection Nodes!",
       fmt::format(" # of Connection Nodes:             {:4}", nodes),
       fmt::format(" # of Conductors in Line Constants: {:4}", conductors),
       "The Number of Connection Nodes is defined in the", "ORVEX page where the corvo_interface",
       "component connects conductors to the circuit.", "The Number of Conductors is defined by",
       "the number of towers and conductors in each tower.",
       "(note Ground wires which are eliminated are not", "counted as equivalent conductors)."}));
}

std::string samePlace(int i, int j) {
  return lines({RULE, "ORVEX Line Constants Program: ERROR", "",
                fmt::format("Conductors {} and {} have identical positions.", i, j),
                "If you are using multiple tower components, ensure",
                "the x-coordinate of each tower centre in the right-",
                "of-way is properly entered.", RULE});
}

std::string circuit(const std::string& phases, const std::string& positions) {
  return "Line Constants Tower\n{\nCircuit\n{\nConductors: 3\nConductor Phase Information: " +
         phases + "\n" + positions + "}\n}\n";
}

const std::string APART = "P1 : -10 20\nP2 : 0 20\nP3 : 10 20\n";

} // namespace

TEST(PostRead, FailedChecksEndTheRun) {
  const std::string phasing =
      lines({"Incorrect Phasing Information for Conductors", " in Line Constants!"});
  const auto badPhase = [&](int v) {
    return stars(phasing + lines({fmt::format(" Phasing Value of              {:4}", v),
                                  " Invalid since there are only:    3 Conductors!"}));
  };
  struct Case {
    const char* what;
    std::string body, console;
    int status = 1;
  };
  const std::string near = "P1 : 0 20\nP2 : 1e-11 20\nP3 : 10 20\n";
  const std::string halo = "HALO Options\n{\n}\n";
  const Case cases[] = {
      {"count", summary(2) + circuit("1 2 3", APART), mismatch(2, 3)},
      {"nodes without conductors", summary(3), mismatch(3, 0)},
      {"same place", summary(3) + circuit("1 2 3", near), samePlace(2, 1)},
      {"same place with HALO", summary(3) + circuit("1 2 3", near) + halo, samePlace(2, 1)},
      {"bundle of spacing 0",
       summary(3) + threePhaseTower("Sub-ConductorsPerBundle: 2\n{\nBundleSpacing: 0\n}\n"),
       samePlace(4, 1)},
      {"phase 0", summary(3) + circuit("0 2 3", APART), badPhase(0)},
      {"phase 4", summary(3) + circuit("4 2 3", APART), badPhase(4)},
      {"no phases", summary(3) + circuit("", APART), badPhase(0)},
      {"phase twice", summary(3) + circuit("1 1 3", APART),
       stars(phasing +
             lines({" Connection Information for Conductor #     2", " Does not Exist!"}))},
      {"HALO checks no count", summary(1) + circuit("9 9 9", APART) + halo, "", 0},
  };
  for (const Case& c : cases) {
    const ChildResult r = readInChild(description(c.body));
    EXPECT_EQ(r.console, c.console) << c.what;
    EXPECT_EQ(r.status, c.status) << c.what;
  }
}

TEST(PostRead, VeryShortLine) {
  const ChildResult r = readInChild(description(""), 0, 1e-11);
  EXPECT_EQ(r.console, lines({RULE, "ORVEX Line Constants Program: ERROR", "",
                              "Line length is very small. Ensure correct line length", RULE}));
  EXPECT_EQ(r.status, 1);
}

TEST(PostRead, BundleMembersAndKeptWiresFollowTheirNodes) {
  // Circuit 1 at nodes 5 1 3 with bundles of two, an eliminated wire, a kept wire at node 2,
  // circuit 2 of one conductor at node 4.
  const std::string body =
      "Line Constants Tower\n{\nCircuit\n{\nConductors: 3\nConductor Phase Information: 5 1 3\n"
      "Radius: 0.01\nP1 : 50 20\nP2 : 10 20\nP3 : 30 20\nSub-ConductorsPerBundle: 2\n{\n"
      "BundleSpacing: 0.4\n}\n}\nGroundWires: 1\n{\nP1 : 0 40\n}\n"
      "GroundWires: 1\n{\nEliminate Ground Wires: 0\nGround Wire Phase Information: 2\n"
      "P1 : 20 30\n}\nCircuit\n{\nConductors: 1\nConductor Phase Information: 4\nP1 : 40 "
      "20\n}\n}\n";
  readHere(description(summary(5) + body));
  const ConductorTable& C = RUNDATA.cond;
  ASSERT_EQ(C.NCOND, 9);
  for (int p = 1; p <= 5; ++p) {
    EXPECT_EQ(C.CPHASE[p], p);
    EXPECT_NEAR(C.CX[p], 10.0 * p + (p % 2 == 1 ? 0.2 : 0.0), 1e-12) << p; // node p stands at 10 p
  }
  for (int e = 6; e <= 8; ++e) {
    ASSERT_GT(C.CMAP[e], 0);
    EXPECT_NEAR(C.CX[e], C.CX[C.CMAP[e]] - 0.4, 1e-12) << e;
  }
  EXPECT_EQ(C.CMAP[9], MAPELIMINATED);
}

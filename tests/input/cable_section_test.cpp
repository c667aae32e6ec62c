// Cable sections and what is derived from them.
#include "store/rundata.h"
#include "support/description.h"

#include <cmath>
#include <fmt/format.h>
#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

constexpr int CABLES = 1; // kind of file
const std::string RADIUS = "Conductor Outer Radius: 0.01\n";

std::string coax(int number, const std::string& keys) {
  return fmt::format("Coax Cable\n{{\nCable Number: {}\n{}}}\n", number, keys);
}

// Core, insulation and sheath out to 0.03 m.
std::string sheathed(int number, const std::string& keys) {
  return coax(number, "Layers: 2\n" + RADIUS +
                          "Insulator 1 Outer Radius: 0.02\nSheath Outer Radius: 0.03\n"
                          "Insulator 1 Relative Permittivity: 2.5\n" +
                          keys);
}

std::string pipe(const std::string& keys) {
  return "Pipe-Type Cable\n{\nPipe Number: 1\nNumber of Inner Cables: 2\n" + keys + "}\n";
}

const Cable& cable(int n) { return RUNDATA.cable.CB[n]; }

void read(const std::string& body) { readHere(description(body), CABLES); }

} // namespace

TEST(CableSection, KeysGoToTheCableOfTheNumber) {
  const Cable &one = cable(1), &two = cable(2);
  const bool& aerial = RUNDATA.cable.ANYOVHD;
  read("Coax Cable\n{\nLayers: 7\nOverhead Cable: 1\nP1: 8 8\nCable Group: 3\n" // no number yet
       "Cable Number: 1\nLayers: 0\n" +
       RADIUS + "}\n");
  EXPECT_EQ(values(one.CBOVHD, one.CBX, one.CBGROUP, one.CBNLAY, aerial), values(0, 0, 0, 1, 0));
  read(sheathed(2, "P1: 3 1\nConductor 2 Crossbonded: 1\nConductor Inner Radius: 0\n") +
       sheathed(1, "P1: 0 1\nOutside Cond Permeability: 7\nEliminate Third Concentric Layer: 1\n"));
  EXPECT_EQ(values(two.CBX, two.CBNLAY, two.radius(), two.CBXBOND[1], two.CBSOLID),
            values(3, 3, 0.03, 1, 1));
  EXPECT_EQ(values(one.CBX, one.CBMU[6], one.CBGAER, one.CBSOLID, one.CBELIM3),
            values(0, 7, 3e-14, 0, 1));
  read(coax(1, "Overhead Cable: 1\nLayers: 0\nP1: 0 9\n" + RADIUS) + // bare in this order only
       coax(2, "Layers: 0\nOverhead Cable: 1\nP1: 1 9\n" + RADIUS));
  EXPECT_EQ(values(one.CBBARE, two.CBBARE, aerial), values(1, 0, 1));
}

TEST(CableSection, PipeHoldsItsCables) {
  const auto losses = [](int f, double tangent) { return 2 * M_PI * f * tangent; };
  const std::string inner = "Frequency for loss tangent: 60\nInsulator 1 Loss Tangent: 0.001\n";
  const auto body = [&](const std::string& identical) {
    return pipe("P1 : 10 2\nInner Insulator Outer Radius: 0.2\nConductor Outer Radius: 0.25\n"
                "Frequency for loss tangent: 50\nInner Ins. Loss Tangent: 0.002\n" +
                identical + sheathed(2, inner + "P1: 0.1 0 0.1 90\nGround Last Layer: 1\n") +
                sheathed(3, inner + "P1: -0.1 0 0.1 180\nInsulator 1 Loss Tangent: 0.005\nSheath "
                                    "Outer Radius: 0.04\n") +
                "Outer Ins. Loss Tangent: 0.003\n") +
           sheathed(1, inner + "P1: 0 1 7 7\n");
  };
  const Cable &one = cable(1), &two = cable(2), &three = cable(3);
  const PipeRecord& P = RUNDATA.cable.pipe;
  read(body(""));
  EXPECT_EQ(values(one.CBPIPE, two.CBPIPE, three.CBPIPE, one.CBPR), values(0, 1, 1, 0));
  EXPECT_DOUBLE_EQ(two.CBPTH, M_PI / 2.0);
  EXPECT_DOUBLE_EQ(one.CBTAND[0], losses(60, 0.001));
  EXPECT_DOUBLE_EQ(two.CBTAND[0], losses(50, 0.001)); // as the pipe has it
  EXPECT_DOUBLE_EQ(P.PIPETANI, losses(50, 0.002));
  EXPECT_DOUBLE_EQ(P.PIPETANO, losses(50, 0.003));
  EXPECT_EQ(three.radius(), 0.04);
  read(body("Identical Cables: 1\n"));
  EXPECT_EQ(values(three.radius(), three.CBGLAST, three.CBX), values(0.03, 1, -0.1));
  EXPECT_EQ(three.CBTAND, two.CBTAND);
  read(body("") + "Frequency Dep. (Phase) Model Options\n{\nCable dielectric loss method: 0\n}\n");
  EXPECT_EQ(values(one.CBGLAST, one.CBTAND[0], P.PIPETANI), values(0, 0, 0));
  EXPECT_EQ(values(P.PIPEOVHD, RUNDATA.cable.ANYOVHD), values(0, 0));
  read(body("Overhead Pipe: 1\n"));
  EXPECT_EQ(values(P.PIPEOVHD, RUNDATA.cable.ANYOVHD), values(1, 1));
}

TEST(CableSection, SemiConductorsKeepTheCapacitance) {
  read(sheathed(1, "Semi-conducting layers: 1\nInner semi-conductor layer thickness: 0.001\n"
                   "Outer semi-conductor layer thickness: 0.002\n"));
  // eps / ln(b / a) of the layer as stored is that of the insulation alone
  EXPECT_NEAR(cable(1).CBEPS[0] / std::log(2.0), 2.5 / std::log(0.018 / 0.011), 1e-13);
  EXPECT_EQ(cable(1).CBRAD[RADINSULATOR1], 0.02);
}

TEST(CableSection, OverheadConductorsBecomeCables) {
  const std::string wire =
      "GroundWires: 1\n{\nDCResistance: 2\nRadius: 0.005\nSag: 3\nP1 : 0 30\n}\n";
  const struct {
    std::string lines;
    double area; // that carries the current, m^2
    int members, strands, solid;
  } cores[] = {
      {"", M_PI * 0.015 * 0.015, 0, 0, 1},
      {"Thickness: 0.005\nSub-ConductorsPerBundle: 2\n{\nBundleSpacing: 0.4\n}\n",
       M_PI * (0.015 * 0.015 - 0.01 * 0.01), 3, 0, 0},
      {"Strand Radius: 0.002\nTotal Number of Strands: 19\n", 19 * M_PI * 4e-6, 0, 1, 0},
  };
  for (const auto& c : cores) {
    SCOPED_TRACE(c.lines);
    read(sheathed(1, "P1: 0 1\n") + threePhaseTower(c.lines, wire));
    const int n = 5 + c.members; // cables
    const CableTable& T = RUNDATA.cable;
    ASSERT_EQ(values(T.NCABLE, RUNDATA.line.NC, T.MIXEDOH, T.ANYOVHD),
              values(n, n + 1, 1, 1)); // core and sheath ahead
    const Cable& first = cable(2);
    EXPECT_NEAR(first.CBRHO[0] / c.area, 0.05e-3, 1e-18);
    EXPECT_EQ(values(first.CBRAD[RADCORE], first.CBNLAY, first.CBOVHD, first.CBBARE, first.CBSTRND,
                     first.CBSOLID),
              values(0.015, 1, 1, 0, c.strands, c.solid));
    // two thirds of the sag below the tower point
    EXPECT_EQ(values(cable(n).CBBARE, cable(n).CBGLAST, cable(n).CBY), values(1, 3, 28));
    const ConductorTable& C = RUNDATA.cond;
    EXPECT_EQ(values(C.CMAP[2], C.CCIRC[2], C.CCIRC[3], C.CMAP[n + 1]),
              values(MAPMAIN, 2, 1, MAPELIMINATED));
    for (int k = 1; k <= c.members; ++k) EXPECT_EQ(C.CMAP[5 + k], 2 + k);
  }
}

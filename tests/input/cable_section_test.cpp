// Cable sections, their checks, and what is derived from them.
#include "input/reader_cases.h"
#include "store/rundata.h"

#include <cmath>
#include <fmt/format.h>

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
  return "Pipe-Type Cable\n{\nPipe Number: 1\n" + keys + "}\n";
}

std::string tooMany(int cables) {
  return starred({fmt::format("Too Many Cables Entered ({})!", cables),
                  "Cable Number Must be > 0 and <= 100",
                  "Check the Cable Number Data for Each Cable", "In the Cable Sub-Page!"});
}

// Cables 1 to n without layers, at x = 1, 2, ...
std::string points(int n, int y) {
  std::string cables;
  for (int i = 1; i <= n; ++i) cables += coax(i, fmt::format("P1: {} {}\n", i, y));
  return cables;
}

const Cable& cable(int n) { return RUNDATA.cable.CB[n]; }

void checkCables(const std::vector<ReaderCase>& cases) { check(cases, CABLES); }

void read(const std::string& body) { readHere(description(body), CABLES); }

} // namespace

TEST(CableSection, RefusesNumbersAndCounts) {
  const std::string open = "Coax Cable\n{\nCable Number: ";
  const std::string openPipe = "Pipe-Type Cable\n{\nPipe Number: ";
  const auto outside = [](int n) {
    return starred({fmt::format("Incorrect Cable Number Entered ({})!", n),
                    "Cable Number Must be > 0 and <= 100",
                    "Check the Cable Number In the Cable Sub-Page!"});
  };
  const std::string twice =
      starred({"Data For Cable (3) ", "Has Already Been Entered!",
               "In the Cable Sub-Page, Each Cable Must Have", "a Unique Cable Number!"});
  const std::string layers = starred({"Data For Cable (4) ", "is Invalid!"});
  const std::string pipeTwo =
      ruled({"Incorrect pipe number entered 2.", "Pipe number must be > 0 and <= 1"});
  const std::string pipeTwice = ruled({"Data for pipe 1 has already been entered.",
                                       "Please ensure that each pipe has a unique number."});
  checkCables({
      {open + "0", outside(0)},
      {open + "101", outside(101)},
      {"Four-Wire Cable\n{\nCable Number: 101", outside(101)},
      {open + "x"},
      {coax(3, "") + open + "3", twice},
      {open + "3\nCable Number: 3", twice},
      {open + "4\nLayers: -1", layers},
      {open + "4\nLayers: 8", layers},
      {open + "1\nP1: 0 x"},
      {points(100, 0) + "Coax Cable", tooMany(101)},
      {openPipe + "2", pipeTwo},
      {pipe("") + openPipe + "1", pipeTwice},
      {openPipe + "1\nNumber of Inner Cables: -1"},
      {openPipe + "1\nCoax Cable\nLayers: 1"},
  });
}

TEST(CableSection, ChecksNumbersAndLayers) {
  const auto missing = [](const std::string& what, int n) {
    return ruled({fmt::format("A unique and sequential {} number must be entered", what),
                  fmt::format("for each {} in the right-of-way.", what), "",
                  fmt::format("Data for {} {} has not been entered.", what, n)});
  };
  const std::string radii =
      ruled({"Invalid radius entered for cable 1.",
             "The radius of each layer must be greater than the", "radius of the previous layer."});
  const std::string semi =
      ruled({"Invalid semi-conductor layer thickness in cable",
             "1. Check semi-conductor thickness in relation to",
             "Check semi-conductor thickness in relation ", "other cable layer dimensions."});
  const std::string bare =
      ruled({"All cables are bare. There must be at least one", "insulated cable in the system!"});
  const std::string bareCable = coax(1, "Overhead Cable: 1\nLayers: 0\n" + RADIUS + "P1: 5 9\n");
  const std::string outer =
      "Conductor Outer Radius: 0.5\nOuter Insulator Outer Radius: 0.6\nOuter Insulator Layer: 1\n";
  checkCables({
      {sheathed(1, "P1: 0 1\n") + sheathed(3, "P1: 1 1\n"), missing("cable", 2)},
      {"Coax Cable\n{\nLayers: 7\nP1: 1 2\n}\n", missing("cable", 1)},
      {pipe("Inner Insulator Outer Radius: 200\n" + points(100, 0) + "Coax Cable\n{\n}\n"),
       missing("cable", 101)},
      {"Pipe-Type Cable\n{\nOverhead Pipe: 1\n}\n", missing("pipe", 1)},
      {sheathed(1, "Sheath Outer Radius: 0.02\n"), radii},
      {coax(1, "Layers: 0\n"), radii},
      {sheathed(1, "Semi-conducting layers: 1\nOuter semi-conductor layer thickness: 0.02\n"),
       semi},
      {bareCable, bare},
      {"Line Constants Ground Data\n{\n}\n", bare}, // no cables
      {bareCable + pipe(""), bare},
      {bareCable + pipe(outer)},
      {bareCable + pipe(outer + "Ground Pipe: 1\n"), bare},
  });
}

TEST(CableSection, ChecksPlaces) {
  const auto overlap = [](const char* who, const char* d, const char* s) {
    return ruled({fmt::format("{} overlap, given their", who), " overall diameter and xy position!",
                  fmt::format("     Centre Point Modulus = {}", d),
                  fmt::format("             Sum of Radii = {}", s)});
  };
  const std::string same =
      ruled({"Cables 2 and 1 have identical positions.",
             "If you are using multiple cable components, ensure",
             "the x-coordinate of each cable centre in the right-", "of-way is properly entered."});
  const std::string outside = ruled({"Part or all of inner cable 1 is overlapping or",
                                     "outside the encompassing pipe conductor in pipe", "number 1.",
                                     "Adjust the position data of this cable so that it is",
                                     "positioned wholly within the pipe inner radius."});
  const auto thick = [](int n, const std::string& place) {
    return sheathed(n, "Sheath Outer Radius: 0.125\nP1: " + place + "\n");
  };
  const std::string walls =
      "P1 : 0 1\nInner Insulator Outer Radius: 0.25\nConductor Outer Radius: 0.5\n";
  checkCables({
      {thick(1, "1 1") + thick(2, "1 1"), same},
      {thick(1, "1 1") + sheathed(2, "P1: 1 1\nOverhead Cable: 1\n")}, // above
      {thick(1, "0 1") + thick(2, "0.25 1")},                          // touching
      {thick(1, "0 1") + thick(2, "0.125 1"), overlap("Cable 2 and 1", "0.1250E+00", "0.2500E+00")},
      {pipe(walls + thick(1, "0 0.1 0 0"))},
      {pipe(walls + thick(1, "0 0.125 0 0")), outside},
      {thick(1, "0.625 1") + pipe(walls)},
      {thick(1, "0.25 1") + pipe(walls), overlap("Pipe 1 and cable1", "0.2500E+00", "0.6250E+00")},
  });
}

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
                sheathed(3, inner + "P1: -0.1 0 0.1 180\nSheath Outer Radius: 0.04\n") +
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
  read(body("Identical Cables: 1\n") + "Frequency Dep. (Phase) Model Options\n{\n"
                                       "Cable dielectric loss method: 0\n}\n");
  EXPECT_EQ(values(three.radius(), three.CBGLAST, three.CBX), values(0.03, 1, -0.1));
  EXPECT_EQ(values(one.CBGLAST, one.CBTAND[0], P.PIPETANI), values(0, 0, 0));
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

TEST(CableSection, ConversionStaysInItsTables) {
  std::string wires;
  for (int height = 30; height < 38; ++height) {
    wires += "GroundWires: 90\n{\n";
    for (int i = 1; i <= 90; ++i) wires += fmt::format("P{} : {} {}\n", i, i, height);
    wires += "}\n";
  }
  const std::string tower = threePhaseTower();
  checkCables({
      {points(97, 1) + tower},
      {points(98, 1) + tower + "END-OF-CORVO-INPUT-DATA", tooMany(101)},
      {points(1, 1) + "Line Constants Tower\n{\n" + wires + "}\n",
       "Error, Too Many Conductors! (Max= ,720!)\n"},
  });
  const ChildResult noCable = readInChild(description(tower), CABLES);
  EXPECT_EQ(noCable.console, lines({"*WARNING*: If there are only overhead lines,it is ",
                                    "better to model using overhead line model "}));
  EXPECT_EQ(noCable.status, 0);
}

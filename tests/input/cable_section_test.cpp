// Cable sections, their checks, and what is derived from them.
#include "store/rundata.h"
#include "support/description.h"

#include <cmath>
#include <fmt/format.h>
#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

constexpr int CABLES = 1; // kind of file
const std::string LONGSTARS(45, '*');
const std::string RULE(53, '=');

std::string coax(const std::string& number, const std::string& keys) {
  return "Coax Cable\n{\nCable Number: " + number + "\n" + keys + "}\n";
}

// Core, insulation and sheath out to 0.03 m.
std::string sheathed(const std::string& number, const std::string& keys) {
  return coax(number, "Layers: 2\nConductor Outer Radius: 0.01\nInsulator 1 Outer Radius: 0.02\n"
                      "Insulator 1 Relative Permittivity: 2.5\nSheath Outer Radius: 0.03\n" +
                          keys);
}

std::string pipe(const std::string& number, const std::string& keys) {
  return "Pipe-Type Cable\n{\nPipe Number: " + number + "\n" + keys + "}\n";
}

std::string starred(std::initializer_list<std::string> texts, const std::string& lastLine) {
  return LONGSTARS + "\nCorvo.exe: ERROR\n" + lines(texts) + LONGSTARS + "\n" +
         errorExit(lastLine, CABLES);
}

std::string ruled(std::initializer_list<std::string> texts) {
  return RULE + "\nORVEX Line Constants Program: ERROR\n\n" + lines(texts) + RULE + "\n";
}

std::string overlap(const std::string& who, const std::string& d, const std::string& s) {
  return ruled({who + " overlap, given their", " overall diameter and xy position!",
                "     Centre Point Modulus = " + d, "             Sum of Radii = " + s});
}

std::string tower(const std::string& groups) {
  return "Line Constants Tower\n{\n" + groups + "}\n";
}

struct Case {
  const char* what;
  std::string body, console;
  int status = 1;
};

void check(std::initializer_list<Case> cases) {
  for (const Case& c : cases) {
    const ChildResult r = readInChild(description(c.body), CABLES);
    EXPECT_EQ(r.console, c.console) << c.what;
    EXPECT_EQ(r.status, c.status) << c.what;
  }
}

// Cables 1 to n without layers, at x = 1, 2, ...
std::string points(int n, const std::string& y) {
  std::string cables;
  for (int i = 1; i <= n; ++i) cables += coax(std::to_string(i), fmt::format("P1: {} {}\n", i, y));
  return cables;
}

const Cable& cable(int n) { return RUNDATA.cable.CB[n]; }

} // namespace

TEST(CableSection, RefusesNumbersAndCounts) {
  const auto outside = [](const std::string& n) {
    return starred({"Incorrect Cable Number Entered (" + n + ")!",
                    "Cable Number Must be > 0 and <= 100",
                    "Check the Cable Number In the Cable Sub-Page!"},
                   "Cable Number: " + n);
  };
  const auto layers = [](const std::string& n) {
    return starred({"Data For Cable (4) ", "is Invalid!"}, "Layers: " + n);
  };
  const std::string twice =
      starred({"Data For Cable (3) ", "Has Already Been Entered!",
               "In the Cable Sub-Page, Each Cable Must Have", "a Unique Cable Number!"},
              "Cable Number: 3");
  check({
      {"number 0", coax("0", ""), outside("0")},
      {"number 101", coax("101", ""), outside("101")},
      {"four-wire number 101", "Four-Wire Cable\n{\nCable Number: 101\n", outside("101")},
      {"number no number", coax("x", ""), errorExit("Cable Number: x", CABLES)},
      {"number twice", coax("3", "") + coax("3", ""), twice},
      {"number twice in one section", coax("3", "Cable Number: 3\n"), twice},
      {"negative layers", coax("4", "Layers: -1\n"), layers("-1")},
      {"eight layers", coax("4", "Layers: 8\n"), layers("8")},
      {"pipe 2", pipe("2", ""),
       ruled({"Incorrect pipe number entered 2.", "Pipe number must be > 0 and <= 1"}) +
           errorExit("Pipe Number: 2", CABLES)},
      {"pipe twice", pipe("1", "") + pipe("1", ""),
       ruled({"Data for pipe 1 has already been entered.",
              "Please ensure that each pipe has a unique number."}) +
           errorExit("Pipe Number: 1", CABLES)},
      {"negative inner cables", pipe("1", "Number of Inner Cables: -1\n"),
       errorExit("Number of Inner Cables: -1", CABLES)},
      {"coax in a pipe without block", pipe("1", "Coax Cable\nLayers: 1\n"),
       errorExit("Layers: 1", CABLES)},
      {"position no number", coax("1", "P1: 0 x\n"), errorExit("P1: 0 x", CABLES)},
  });
}

TEST(CableSection, ChecksGeometry) {
  const auto inPipe = [](const std::string& y) {
    return pipe("1", "P1 : 0 1\nInner Insulator Outer Radius: 0.25\nConductor Outer Radius: 0.5\n" +
                         sheathed("1", "Sheath Outer Radius: 0.125\nP1: 0 " + y + " 0 0\n"));
  };
  const auto missing = [](int n) {
    return ruled({"A unique and sequential cable number must be entered",
                  "for each cable in the right-of-way.", "",
                  fmt::format("Data for cable {} has not been entered.", n)});
  };
  const auto radii = [](int n) {
    return ruled({fmt::format("Invalid radius entered for cable {}.", n),
                  "The radius of each layer must be greater than the",
                  "radius of the previous layer."});
  };
  const std::string outside = ruled({"Part or all of inner cable 1 is overlapping or",
                                     "outside the encompassing pipe conductor in pipe", "number 1.",
                                     "Adjust the position data of this cable so that it is",
                                     "positioned wholly within the pipe inner radius."});
  const std::string semi =
      ruled({"Invalid semi-conductor layer thickness in cable",
             "1. Check semi-conductor thickness in relation to",
             "Check semi-conductor thickness in relation ", "other cable layer dimensions."});
  const std::string bare =
      ruled({"All cables are bare. There must be at least one", "insulated cable in the system!"});
  const auto bareCable = [](const std::string& behind) {
    return coax("1", "Overhead Cable: 1\nLayers: 0\nConductor Outer Radius: 0.01\nP1: 5 9\n") +
           behind;
  };
  const auto touching = [](const std::string& x) {
    return sheathed("1", "P1: 0 1\nSheath Outer Radius: 0.125\n") +
           sheathed("2", "P1: " + x + " 1\nSheath Outer Radius: 0.125\n");
  };
  const std::string walls =
      "Conductor Outer Radius: 0.5\nOuter Insulator Outer Radius: 0.6\nP1 : 0 1\n";
  check({
      {"gap", sheathed("1", "P1: 0 1\n") + sheathed("3", "P1: 1 1\n"), missing(2)},
      {"section without number", "Coax Cable\n{\nLayers: 7\nP1: 1 2\n}\n", missing(1)},
      {"101 in a pipe",
       pipe("1", "Inner Insulator Outer Radius: 200\n" + points(100, "0") + "Coax Cable\n{\n}\n"),
       missing(101)},
      {"same place", sheathed("1", "P1: 1 1\n") + sheathed("2", "P1: 1 1\n"),
       ruled({"Cables 2 and 1 have identical positions.",
              "If you are using multiple cable components, ensure",
              "the x-coordinate of each cable centre in the right-",
              "of-way is properly entered."})},
      {"an aerial cable stands above",
       sheathed("1", "P1: 1 1\n") + sheathed("2", "P1: 1 1\nOverhead Cable: 1\n"), "", 0},
      {"touching", touching("0.25"), "", 0},
      {"overlapping", touching("0.125"), overlap("Cable 2 and 1", "0.1250E+00", "0.2500E+00")},
      {"in the pipe", inPipe("0.1"), "", 0},
      {"at the wall of the pipe", inPipe("0.125"), outside},
      {"equal radii", sheathed("1", "Sheath Outer Radius: 0.02\n"), radii(1)},
      {"no radii", coax("1", "Layers: 0\n"), radii(1)},
      {"thick semi-conductor",
       sheathed("1", "Semi-conducting layers: 1\nOuter semi-conductor layer thickness: 0.02\n"),
       semi},
      {"all bare", bareCable(""), bare},
      {"no cables", "Line Constants Ground Data\n{\n}\n", bare},
      {"bare in a bare pipe", bareCable(pipe("1", "")), bare},
      {"bare with an insulated pipe", bareCable(pipe("1", walls + "Outer Insulator Layer: 1\n")),
       "", 0},
      {"... that is grounded", bareCable(pipe("1", "Outer Insulator Layer: 1\nGround Pipe: 1\n")),
       bare},
      {"pipe without number", "Pipe-Type Cable\n{\nOverhead Pipe: 1\n}\n",
       ruled({"A unique and sequential pipe number must be entered",
              "for each pipe in the right-of-way.", "", "Data for pipe 1 has not been entered."})},
      {"cable at the pipe",
       sheathed("1", "P1: 0.625 1\nSheath Outer Radius: 0.125\n") + pipe("1", walls), "", 0},
      {"cable over the pipe", sheathed("1", "P1: 0.25 1\n") + pipe("1", walls),
       overlap("Pipe 1 and cable1", "0.2500E+00", "0.5300E+00")},
  });
}

TEST(CableSection, KeysBeforeANumberGoNowhere) {
  readHere(description("Coax Cable\n{\nLayers: 7\nOverhead Cable: 1\nP1: 8 8\nCable Group: 3\n"
                       "Cable Number: 1\nLayers: 0\nConductor Outer Radius: 0.01\n}\n"),
           CABLES);
  EXPECT_FALSE(cable(1).CBOVHD || cable(1).CBBARE || RUNDATA.cable.ANYOVHD);
  EXPECT_EQ(cable(1).CBX + cable(1).CBY, 0.0);
  EXPECT_EQ(cable(1).CBGROUP, 0);
  EXPECT_EQ(cable(1).CBNLAY, 1);
}

TEST(CableSection, NumbersOutOfOrder) {
  readHere(description(sheathed("2", "P1: 3 1\nAerial Shunt Conductance: 1e-9\nCable Group: 4\n"
                                     "Conductor 2 Crossbonded: 1\nConductor Inner Radius: 0\n") +
                       sheathed("1", "P1: 0 1\nInsulator 4 Loss Tangent: 0.5\n"
                                     "Outside Cond Permeability: 7\nBessel Based Solution: 1\n"
                                     "Eliminate Third Concentric Layer: 1\n")),
           CABLES);
  EXPECT_EQ(cable(1).CBX, 0.0);
  EXPECT_EQ(cable(2).CBX, 3.0);
  EXPECT_EQ(cable(2).CBNLAY, 3);
  EXPECT_EQ(cable(2).radius(), 0.03);
  EXPECT_EQ(cable(1).CBMU[6], 7.0);
  EXPECT_EQ(cable(1).CBGAER, 3.0e-14);
  EXPECT_EQ(cable(2).CBGAER, 1.0e-9);
  EXPECT_EQ(cable(2).CBXBOND[1], 1);
  EXPECT_EQ(cable(2).CBGROUP, 4);
  EXPECT_TRUE(cable(2).CBSOLID);
  EXPECT_FALSE(cable(1).CBSOLID);
  EXPECT_TRUE(cable(1).CBBESSEL && cable(1).CBELIM3 && !cable(1).CBELIM1);
  EXPECT_FALSE(RUNDATA.cable.ANYOVHD);
}

TEST(CableSection, BareOnlyWhenAerialCameFirst) {
  const std::string radius = "Conductor Outer Radius: 0.01\n";
  readHere(description(coax("1", "Overhead Cable: 1\nLayers: 0\nP1: 0 9\n" + radius) +
                       coax("2", "Layers: 0\nOverhead Cable: 1\nP1: 1 9\n" + radius) +
                       coax("3", "Layers: 0\nP1: 2 1\n" + radius)),
           CABLES);
  EXPECT_TRUE(cable(1).CBBARE && RUNDATA.cable.ANYOVHD);
  EXPECT_FALSE(cable(2).CBBARE || cable(3).CBBARE);
  EXPECT_EQ(cable(3).CBNLAY, 1);
}

TEST(CableSection, PipeHoldsItsCables) {
  const std::string inner = "Frequency for loss tangent: 60\nInsulator 1 Loss Tangent: 0.001\n";
  const auto body = [&](const std::string& identical) {
    return description(
        pipe("1", "P1 : 10 2\nInner Insulator Outer Radius: 0.2\nConductor Outer Radius: 0.25\n"
                  "Frequency for loss tangent: 50\nInner Ins. Loss Tangent: 0.002\n" +
                      identical +
                      sheathed("2", inner + "P1: 0.1 0 0.1 90\nGround Last Layer: 1\n") +
                      sheathed("3", inner + "P1: -0.1 0 0.1 180\nSheath Outer Radius: 0.04\n"
                                            "Cable Group: 5\n") +
                      "Outer Ins. Loss Tangent: 0.003\n") +
        sheathed("1", inner + "P1: 0 1 7 7\n"));
  };
  const double perTangent = 2.0 * M_PI;
  readHere(body(""), CABLES);
  EXPECT_EQ(RUNDATA.cable.NCABLE, 3);
  EXPECT_EQ(cable(1).CBPIPE, 0);
  EXPECT_EQ(cable(2).CBPIPE, 1);
  EXPECT_EQ(cable(3).CBPIPE, 1);
  EXPECT_DOUBLE_EQ(cable(2).CBPTH, M_PI / 2.0);
  EXPECT_EQ(cable(1).CBPR, 0.0); // no cable of a pipe
  EXPECT_DOUBLE_EQ(cable(1).CBTAND[0], perTangent * 60.0 * 0.001);
  EXPECT_DOUBLE_EQ(cable(2).CBTAND[0], perTangent * 50.0 * 0.001);
  EXPECT_DOUBLE_EQ(RUNDATA.cable.pipe.PIPETANI, perTangent * 50.0 * 0.002);
  EXPECT_DOUBLE_EQ(RUNDATA.cable.pipe.PIPETANO, perTangent * 50.0 * 0.003);
  EXPECT_EQ(cable(3).radius(), 0.04);

  readHere(body("Identical Cables: 1\n"), CABLES);
  EXPECT_EQ(cable(3).radius(), 0.03);
  EXPECT_EQ(cable(3).CBGLAST, 1);
  EXPECT_EQ(cable(3).CBX, -0.1);
  EXPECT_EQ(cable(3).CBGROUP, 5);
  EXPECT_EQ(cable(1).CBGLAST, 0);
}

TEST(CableSection, LossesOnlyByTheirMethod) {
  readHere(description(sheathed("1", "Insulator 1 Loss Tangent: 0.1\n"
                                     "Frequency for loss tangent: 50\n") +
                       "Frequency Dep. (Phase) Model Options\n{\n"
                       "Cable dielectric loss method: 0\n}\n"),
           CABLES);
  EXPECT_EQ(cable(1).CBTAND[0], 0.0);
}

TEST(CableSection, SemiConductorsKeepTheCapacitance) {
  readHere(description(sheathed("1", "Semi-conducting layers: 1\n"
                                     "Inner semi-conductor layer thickness: 0.001\n"
                                     "Outer semi-conductor layer thickness: 0.002\n")),
           CABLES);
  // eps / ln(b / a) of the layer as stored is that of the insulation alone
  EXPECT_NEAR(cable(1).CBEPS[0] / std::log(2.0), 2.5 / std::log(0.018 / 0.011), 1e-13);
  EXPECT_EQ(cable(1).CBRAD[RADINSULATOR1], 0.02);
}

TEST(CableSection, FourWireRecord) {
  readHere(description("Four-Wire Cable\n{\nName: x\nCable Number: 1\nP1: 2 3\n"
                       "Nominal Conductor Area: 50\nInsulator Thickness: 0.001\n"
                       "Polyester Tape Thickness: 0.002\nOuter Mantle Thickness: 0.003\n"
                       "Conductor Resistivity: 1e-8\nConductor Permeability: 9\n"
                       "Insulator Relative Permittivity: 4\nInsulator Permeability: 9\n"
                       "Polyester Tape Relative Permittivity: 5\nPolyester Tape Permeability: 9\n"
                       "Outer Mantle Relative Permittivity: 6\nOuter Mantle Permeability: 9\n}\n"),
           CABLES);
  EXPECT_EQ(RUNDATA.run.ISCABLE, FOURWIRECABLE);
  const FourWireRecord& F = RUNDATA.cable.fourWire;
  const double got[] = {cable(1).CBX, cable(1).CBY, F.FWAREA, F.FWTINS, F.FWTTAPE,
                        F.FWTMANT,    F.FWRHO,      F.FWEPSI, F.FWEPST, F.FWEPSM};
  const double read[] = {2, 3, 50, 0.001, 0.002, 0.003, 1e-8, 4, 5, 6};
  for (int i = 0; i < 10; ++i) EXPECT_EQ(got[i], read[i]) << i;
}

TEST(CableSection, OverheadConductorsBecomeCables) {
  const std::string wire =
      "GroundWires: 1\n{\nDCResistance: 2\nRadius: 0.005\nSag: 3\nP1 : 0 30\n}\n";
  const std::string bundle = "Sub-ConductorsPerBundle: 2\n{\nBundleSpacing: 0.4\n}\n";
  struct {
    const char* what;
    std::string circuitLines;
    double area; // that carries the current, m^2
    int members;
  } const cores[] = {
      {"solid", "", M_PI * 0.015 * 0.015, 0},
      {"tube", "Thickness: 0.005\n", M_PI * (0.015 * 0.015 - 0.01 * 0.01), 3},
      {"strands", "Strand Radius: 0.002\nTotal Number of Strands: 19\n", 19 * M_PI * 4e-6, 0},
  };
  for (const auto& c : cores) {
    SCOPED_TRACE(c.what);
    const std::string circuit = c.circuitLines + (c.members > 0 ? bundle : "");
    readHere(description(sheathed("1", "P1: 0 1\n") + threePhaseTower(circuit, wire)), CABLES);
    const int conductors = 4 + c.members;
    ASSERT_EQ(RUNDATA.cable.NCABLE, 1 + conductors);
    EXPECT_EQ(RUNDATA.line.NC, 2 + conductors); // core and sheath ahead of them
    EXPECT_TRUE(RUNDATA.cable.MIXEDOH && RUNDATA.cable.ANYOVHD);
    const Cable& first = cable(2);
    EXPECT_NEAR(first.CBRHO[0] / c.area, 0.05e-3, 1e-18);
    EXPECT_EQ(first.CBRAD[RADCORE], 0.015);
    EXPECT_EQ(first.CBNLAY, 1);
    EXPECT_TRUE(first.CBOVHD && !first.CBBARE);
    EXPECT_EQ(first.CBSTRND, c.what == std::string("strands"));
    EXPECT_EQ(first.CBSOLID, c.what == std::string("solid"));
    const Cable& last = cable(1 + conductors);
    EXPECT_TRUE(last.CBBARE);
    EXPECT_EQ(last.CBGLAST, 3);
    EXPECT_EQ(last.CBY, 28.0); // two thirds of the sag below the tower point
    const ConductorTable& C = RUNDATA.cond;
    EXPECT_EQ(C.CMAP[2], MAPMAIN);
    EXPECT_EQ(C.CCIRC[2], 2);
    EXPECT_EQ(C.CCIRC[3], 1);
    EXPECT_EQ(C.CMAP[2 + conductors], MAPELIMINATED);
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
  const std::string end = "END-OF-CORVO-INPUT-DATA";
  check({
      {"no cable", threePhaseTower(),
       lines({"*WARNING*: If there are only overhead lines,it is ",
              "better to model using overhead line model "}),
       0},
      {"97 cables and 3 conductors", points(97, "1") + threePhaseTower(), "", 0},
      {"98 cables and 3 conductors", points(98, "1") + threePhaseTower(),
       starred({"Too Many Cables Entered (101)!", "Cable Number Must be > 0 and <= 100",
                "Check the Cable Number Data for Each Cable", "In the Cable Sub-Page!"},
               end)},
      {"720 wires and a cable", points(1, "1") + tower(wires),
       "Error, Too Many Conductors! (Max= ,720!)\n"},
  });
}

// The conductor table that towers, bundles, ground wires and external files leave.
#include "input/bundles.h"
#include "input/library.h"
#include "store/rundata.h"
#include "support/description.h"

#include <cmath>
#include <fmt/format.h>
#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

const ConductorTable& C = RUNDATA.cond;

std::vector<int> maps() { return {C.CMAP.entries.begin(), C.CMAP.entries.begin() + C.NCOND}; }

// 49 numbers; the first ones given, the rest 0.
std::string externalRecord(std::string_view numbers, int given) {
  return fmt::format("{} {}*0\n", numbers, 49 - given);
}

std::string towerWithFile(const std::string& path) {
  return "Line Constants Tower\n{\nExternal file name: " + path + "\n}\n";
}

} // namespace

TEST(Tower, RegularBundleSpreadsRoundTheTowerPoint) {
  readHere(description(summary(3) + threePhaseTower("Sub-ConductorsPerBundle: 4\n{\n"
                                                    "BundleSpacing: 0.4\n}\n")));
  ASSERT_EQ(C.NCOND, 12);
  EXPECT_EQ(maps(), (std::vector<int>{0, 0, 0, 1, 2, 3, 1, 2, 3, 1, 2, 3}));
  const double d = 0.4 / (2 * std::sin(M_PI / 4)) * std::cos(M_PI / 4);
  for (int c = 1; c <= 3; ++c) {
    const double x = 10.0 * (c - 2);
    EXPECT_NEAR(C.CX[c], x + d, 1e-12);
    EXPECT_NEAR(C.CY[c], 20 + d, 1e-12);
    EXPECT_NEAR(C.CX[c + 3], x - d, 1e-12);
    EXPECT_NEAR(C.CY[c + 6], 20 - d, 1e-12);
    EXPECT_NEAR(C.CYAVG[c + 9], 20 - d - 4, 1e-12);
    EXPECT_EQ(C.CRAD[c + 9], 0.015);
    EXPECT_NEAR(C.CRDC[c + 9], 0.05e-3, 1e-18);
  }
}

TEST(Tower, RegularOffsetsAreOneSpacingApart) {
  for (int s = 2; s <= 15; ++s) {
    for (int k = 1; k <= s; ++k) {
      const Offset a = regularOffset(k, s, 0.45);
      const Offset b = regularOffset(k % s + 1, s, 0.45);
      EXPECT_NEAR(std::hypot(a.dx - b.dx, a.dy - b.dy), 0.45, 1e-12) << s << ' ' << k;
    }
  }
}

TEST(Tower, ExplicitOffsetsMoveMainConductorsToo) {
  readHere(description(summary(3) + threePhaseTower("Sub-ConductorsPerBundle: 2\n{\nP1 : -0.2 0.1\n"
                                                    "P2 : 0.2\nP3 : 100 100\n}\n")));
  ASSERT_EQ(C.NCOND, 6);
  EXPECT_NEAR(C.CX[1], -10.2, 1e-12);
  EXPECT_NEAR(C.CY[1], 20.1, 1e-12);
  EXPECT_NEAR(C.CX[6], 10.2, 1e-12);
  EXPECT_NEAR(C.CY[6], 20.0, 1e-12);
}

TEST(Tower, GroundWiresTakeTheirData) {
  const std::string group = "GroundWires: {}\n{{\n{}DCResistance: 3\nRadius: 0.005\n"
                            "GW2 DCResistance: 1\nGW2 Radius: 0.007\nSag: 3\nP1 : -5 30\n{}}}\n";
  const std::string two = "P2 : 5 30\n";
  const auto read = [&](int n, const char* keys, int nodes) {
    readHere(description(summary(nodes) + threePhaseTower("ShuntConductance: 1e-11\n",
                                                          fmt::format(fmt::runtime(group), n, keys,
                                                                      n == 2 ? two : ""))));
  };
  read(2, "", 3); // eliminated by default, all alike
  EXPECT_EQ(maps(), (std::vector<int>{0, 0, 0, -1, -1}));
  EXPECT_EQ(C.CRAD[5], 0.005);
  EXPECT_EQ(C.CSHUNT[4], 0.0);
  EXPECT_EQ(C.CYAVG[5], 28.0);
  EXPECT_EQ(C.NCIRC, 1);
  read(2, "Unique Ground Wires: 0\n", 3);
  EXPECT_EQ(C.CRAD[4], 0.005);
  EXPECT_EQ(C.CRAD[5], 0.007);
  EXPECT_NEAR(C.CRDC[5], 1e-3, 1e-18);
  read(1, "Unique Ground Wires: 0\n", 3);
  EXPECT_EQ(C.CRAD[4], 0.005);
  EXPECT_EQ(C.CRAD[5], 0.0); // the second wire's data go nowhere
  read(2, "Eliminate Ground Wires: 0\nGround Wire Phase Information: 4 5\n", 5);
  EXPECT_EQ(maps(), (std::vector<int>{0, 0, 0, -2, -2}));
  EXPECT_EQ(C.CSHUNT[4], 1e-11);
  EXPECT_EQ(C.NCIRC, 2);
  EXPECT_EQ(C.CCIRC[5], 2);
}

TEST(Tower, ConductorShapes) {
  readHere(description(summary(3) + threePhaseTower("Inner Radius: 0.010\nStrand Radius: 0.002\n"
                                                    "Number of Outer Strands: 18\n"
                                                    "Total Number of Strands: 37\n"
                                                    "Conductor Relative Permeability: 1.5\n")));
  for (int i = 1; i <= 3; ++i) {
    EXPECT_TRUE(C.CTUBE[i] && C.CSTRND[i]);
    EXPECT_NEAR(C.CTHICK[i], 0.005, 1e-15);
    EXPECT_EQ(C.CNOUT[i], 18.0);
    EXPECT_EQ(C.CNTOT[i], 37.0);
    EXPECT_EQ(C.CMUR[i], 1.5);
  }
}

TEST(Tower, AGroupOfNoneLeavesNothingBehind) {
  readHere(description(summary(3) +
                       "Line Constants Tower\n{\nCircuit\n{\nConductors: 0\nRadius: 9\n"
                       "Conductor Relative Permeability: 9\n}\n}\n" +
                       threePhaseTower()));
  ASSERT_EQ(C.NCOND, 3);
  EXPECT_EQ(C.CMUR[1], 1.0);
  EXPECT_FALSE(C.ALL3PH);
}

TEST(Tower, KeysAheadOfTheCountStayInsideTheTable) {
  std::string circuit =
      "Line Constants Tower\n{\nCircuit\n{\nConductors: 720\n}\nCircuit\n{\n"
      "Radius: 1\nThickness: 1\nP1 : 1 1\nConductor Phase Information: 1\n"
      "Sub-ConductorsPerBundle: 15\n{\nBundleSpacing: 1\nP : 1 1\n}\nLibrary : x\n";
  EXPECT_NE(readInChild(description(circuit)).status, -1);
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
  readHere(description(summary(4) + towerWithFile(path)));
  ASSERT_EQ(C.NCOND, 7);
  // equivalent conductors in node order, bundle members, eliminated wire
  EXPECT_EQ(maps(), (std::vector<int>{0, 0, 0, -2, 1, 2, -1}));
  EXPECT_EQ(C.NCIRC, 3);
  EXPECT_FALSE(C.ALL3PH);
  EXPECT_NEAR(C.CX[1], -4.8, 1e-12);
  EXPECT_NEAR(C.CX[5], -5.2, 1e-12);
  EXPECT_TRUE(C.CSTRND[2] && !C.CTUBE[2]);
  EXPECT_EQ(C.CNTOT[2], 7.0);
  EXPECT_NEAR(C.CYAVG[6], 20.05 - 2, 1e-12);
  EXPECT_TRUE(C.CTUBE[3]);
  EXPECT_NEAR(C.CTHICK[3], 0.004, 1e-15);
  EXPECT_EQ(C.CTRANSP[1], 1);
  EXPECT_EQ(C.CYAVG[7], 30 - 4.0 / 3.0);
}

TEST(Tower, ExternalFileFailures) {
  const std::string stars(43, '*');
  const auto cannotRead = [&](const std::string& path) {
    return lines({"", stars, "Line Constants Program: ERROR",
                  fmt::format("Error in Reading Data File: {}", path),
                  "File does not appear to conform to correct", "format.", stars,
                  "READTLDATA Ending!"});
  };
  const std::string missing = scratchFile("", "") + "missing";
  const ChildResult none = readInChild(description(towerWithFile(missing)));
  EXPECT_EQ(none.console,
            lines({"", stars, fmt::format("Error in Opening Input Data File: {}", missing), stars,
                   "READTLDATA Ending!"}));
  EXPECT_EQ(none.status, 1);
  for (const std::string text : {"1 2 three\n", "1 2 3\n", "1 2 'x\n"}) {
    const std::string path = scratchFile("bad.txt", text);
    const ChildResult r = readInChild(description(towerWithFile(path)));
    EXPECT_EQ(r.console, cannotRead(path)) << text;
    EXPECT_EQ(r.status, 1) << text;
  }
  const std::string many =
      scratchFile("many.txt", externalRecord("1 1 0 1 0 0 0 0 0 0 0 0 0 0 0 0 16", 17));
  const ChildResult bundle = readInChild(description(towerWithFile(many)));
  EXPECT_EQ(bundle.console,
            lines({"Circuit   1 has  16 Sub-Conductors,", "Maximum of 15 Allowed!"}) +
                errorExit("}"));
}

TEST(Library, WordsOfARow) {
  EXPECT_EQ(LIBWORD("  a bb  c", 1), "a");
  EXPECT_EQ(LIBWORD("  a bb  c", 3), "c");
  EXPECT_EQ(LIBWORD("  a bb  c", 5), "c");
  EXPECT_EQ(LIBWORD("   ", 2), "");
}

TEST(Library, RowsOfBothFormats) {
  const std::string old = scratchFile("old.lib", "name radius resistance\nthree 0.01 0.1\n"
                                                 "four 0.02 0.2 1.5\nfive 0.03 0.3 1.5 0.02\n");
  const std::string fresh =
      scratchFile("new.lib", "#Format 1\nx text text\nacsr 10 0.1 19 2 1.2\n");
  const auto read = [&](const std::string& library, const char* name) {
    return readInChild(
        description(summary(3) + threePhaseTower("Library : " + library +
                                                 "\nName: " + std::string(name) + "\n")));
  };
  const auto readHereWith = [&](const std::string& library, const char* name) {
    readHere(description(summary(3) + threePhaseTower("Library : " + library +
                                                      "\nName: " + std::string(name) + "\n")));
  };
  readHereWith(old, "four");
  EXPECT_EQ(C.CRAD[2], 0.02);
  EXPECT_NEAR(C.CRDC[2], 0.2e-3, 1e-18);
  EXPECT_EQ(C.CMUR[2], 1.5);
  EXPECT_FALSE(C.CTUBE[2]);
  readHereWith(old, "five");
  EXPECT_TRUE(C.CTUBE[2]);
  EXPECT_NEAR(C.CTHICK[2], 0.01, 1e-15);
  readHereWith(fresh, "acsr");
  EXPECT_TRUE(C.CSTRND[3]);
  EXPECT_EQ(C.CRAD[3], 0.01);
  EXPECT_EQ(C.CNTOT[3], 19.0);
  EXPECT_EQ(C.CNOUT[3], 12.0); // 12 strands of 2 mm round a circle of 8 mm
  EXPECT_EQ(C.CMUR[3], 1.2);

  const std::string hyphens(49, '-');
  const ChildResult warned = read(old, "three\nName: three");
  EXPECT_EQ(warned.console,
            lines({hyphens, "Warning:  Conductor permeability and inner radius",
                   fmt::format("information was not found in conductor library{}", old),
                   "See online help for updated format. Values", "defaulted to:",
                   "   Permeability =  1.00", "  Inner Radius =  0.00 [m]", hyphens}));
  EXPECT_EQ(warned.status, 0);
}

TEST(Library, Failures) {
  const std::string stars(43, '*');
  const std::string good = scratchFile("good.lib", "one 0.01 0.1 1\nbad 0.01 text 1\n");
  const std::string future = scratchFile("future.lib", "#Format 2\none 1 1 1 1 1\n");
  std::string many = "#Format 1\n";
  for (int i = 0; i < 5000; ++i) many += "x 1 1 1 1 1\n";
  const std::string tooLong = scratchFile("long.lib", many + "one 10 0.1 19 2 1\n");
  const auto opened = [&](const char* kind, const std::string& path) {
    return lines({stars, fmt::format("Error Opening {} Library File: {}", kind, path), stars});
  };
  const auto notFound = [&](const char* kind, const char* what, const std::string& path,
                            const std::string& name) {
    return lines({stars, fmt::format("Error While Searching {} Library: {}", kind, path),
                  fmt::format("{} {} Not Found!", what, name), stars});
  };
  struct Case {
    std::string library, name, console;
    bool wire = false;
  };
  const Case cases[] = {
      {"nowhere", "one", opened("Conductor", "nowhere")},
      {"", "one", opened("Conductor", "")},
      {future, "one", opened("Conductor", future)},
      {good, "One", notFound("Conductor", "Conductor", good, "One")},
      {good, "one x", notFound("Conductor", "Conductor", good, "one x")},
      {good, "bad", ""},
      {tooLong, "one", notFound("Conductor", "Conductor", tooLong, "one")},
      {"nowhere", "one", opened("Grnd", "nowhere"), true},
      {good, "two", notFound("Grnd Wire", "Ground Wire", good, "two"), true},
  };
  for (const Case& c : cases) {
    const std::string keys = "Library : " + c.library + "\nName: " + c.name + "\n";
    const std::string text =
        c.wire ? threePhaseTower("", "GroundWires: 1\n{\n" + keys + "}\n") : threePhaseTower(keys);
    const ChildResult r = readInChild(description(summary(3) + text));
    EXPECT_EQ(r.console, c.console + errorExit("Name: " + c.name)) << c.library << ' ' << c.name;
    EXPECT_EQ(r.status, 1);
  }
}

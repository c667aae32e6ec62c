#include "input/reader.h"

#include "store/rundata.h"
#include "support/description.h"
#include "support/scratch.h"

#include <filesystem>

#include <fmt/format.h>
#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

const std::string STARS(43, '*');
const std::string ENTRYMETHODS = lines({"ERROR: corvo.exe", "Multiple Data Entry Methods Selected!",
                                        "Select only one Line Data Entry Type Method!"});

std::string unknown(const std::string& line) {
  return fmt::format("Unknown Data Line Ignored: {}\n", line);
}

struct ConsoleCase {
  const char* what;
  std::string text;
  std::string console;
  int status;
  int iscable = 0;
};

void check(const std::vector<ConsoleCase>& cases) {
  for (const ConsoleCase& c : cases) {
    const ChildResult r = readInChild(c.text, c.iscable);
    EXPECT_EQ(r.console, c.console) << c.what;
    EXPECT_EQ(r.status, c.status) << c.what;
  }
}

} // namespace

TEST(Reader, SkipsIgnoresAndNamesUnknownLines) {
  check({
      {"no start mark", "Line Constants Tower\nanything\n", "", 0},
      {"the other start mark", "DATADSD\nrubbish\n", unknown("rubbish"), 0},
      {"comments and blanks", description("! a\nComment\n\n   \n C not first"),
       unknown(" C not first"), 0},
      {"nothing behind the end mark", description("") + "rubbish\n", "", 0},
      {"the other end mark", "DATADSD\nDATADSO\nrubbish\n", "", 0},
      {"text in an option section without keys", description("PI Model Options\n{\nx: 1\n}\n"),
       unknown("x: 1"), 0},
      {"blanks in front of heading and key",
       description("  Line Summary\n   {\n   Number of Conductors: 0\n  }\n"), "", 0},
      {"carriage returns", "CORVO-INPUT-DATA\r\nPI Model Options\r\n{\r\n}\r\n", "", 0},
      {"a key behind its column 119", description(std::string(121, ' ') + "rubbish"), "", 0},
      {"file ends where { is due", "CORVO-INPUT-DATA\nPI Model Options", "", 0},
  });
}

TEST(Reader, TakesTheCommonErrorExit) {
  const std::string circuit = "Line Constants Tower\n{\nCircuit\n{\n";
  check({
      {"comment instead of {", description("PI Model Options\n! note\n{\n}"), errorExit("! note"),
       1},
      {"text for a number", description("Line Summary\n{\nSteady State Frequency: fifty\n}"),
       errorExit("Steady State Frequency: fifty"), 1},
      {"real for an integer", description("Line Summary\n{\nNumber of Conductors: 3.5\n}"),
       errorExit("Number of Conductors: 3.5"), 1},
      {"overflow", description("Line Summary\n{\nLine Length: 1e400\n}"),
       errorExit("Line Length: 1e400"), 1},
      {"negative conductors", description(circuit + "Conductors: -1\n"),
       errorExit("Conductors: -1"), 1},
      {"negative nodes", description(summary(-1)), errorExit("Number of Conductors: -1"), 1},
      {"negative bundle", description(circuit + "Conductors: 3\nSub-ConductorsPerBundle: -2\n{\n"),
       errorExit("Sub-ConductorsPerBundle: -2"), 1},
      {"16 in a bundle", description(circuit + "Conductors: 3\nSub-ConductorsPerBundle: 16\n{\n"),
       lines({"Circuit   1 has  16 Sub-Conductors,", "Maximum of 15 Allowed!"}) +
           errorExit("Sub-ConductorsPerBundle: 16"),
       1},
      {"position list broken off", description(circuit + "Conductors: 2\nP1 : 0 1\nRadius: 1\n"),
       errorExit("Radius: 1"), 1},
      {"fewer increments than 100",
       description("MFDTD Model Options\n{\nTotal Number of Frequency Increments: 99\n}"),
       errorExit("Total Number of Frequency Increments: 99"), 1},
      {"numbered value", description(circuit + "Conductor DC Voltage Magnitudex1 : abc\n"),
       errorExit("Conductor DC Voltage Magnitudex1 : abc"), 1},
  });
}

TEST(Reader, EndsAtItsLimitsWithTheirMessages) {
  const std::string circuit = "Line Constants Tower\n{\nCircuit\n{\n";
  const std::string tooMany = "Error, Too Many Conductors! (Max= ,720!)\n";
  check({
      {"721 conductors", description(circuit + "Conductors: 721\n"), tooMany, 1},
      {"2147483647 conductors", description(circuit + "Conductors: 2147483647\n"), tooMany, 1},
      {"721st in two groups", description(circuit + "Conductors: 720\n}\nGroundWires: 1\n{\n"),
       tooMany, 1},
      {"721st in a bundle",
       description(circuit + "Conductors: 361\nSub-ConductorsPerBundle: 2\n{\n"), tooMany, 1},
      {"720 in bundles, then the file ends",
       "CORVO-INPUT-DATA\n" + circuit + "Conductors: 48\nSub-ConductorsPerBundle: 15\n{\n",
       lines({std::string(53, '='), "ORVEX Line Constants Program: ERROR", "",
              "Conductors 2 and 1 have identical positions.",
              "If you are using multiple tower components, ensure",
              "the x-coordinate of each tower centre in the right-", "of-way is properly entered.",
              std::string(53, '=')}),
       1},
      {"49 nodes", description(summary(49)),
       lines({"Error, Too Many Equivalent Conductors!", "(Max= ,48!)"}), 1},
      {"soil exponent", description("Line Constants Ground Data\n{\nFD Factor: 0\n}\n"),
       lines({"Error: Frequency-dependent resistivity", "       factor must be greater than 0.0."}),
       1},
  });
}

TEST(Reader, RefusesContradictingSections) {
  const std::string pi = "PI Model Options\n{\n}\n";
  const std::string one = "Select only one Line Model Type!\n";
  const std::string cableBlock = STARS + "\nCorvo: ERROR\n";
  std::string cables;
  for (int i = 1; i <= 101; ++i) cables += "Coax Cable\n{\n}\n";
  check({
      {"two models", description(pi + pi),
       "ERROR: corvo.exe\nComponents for > 1 Line Model Selected!\n" + one +
           errorExit("PI Model Options"),
       1},
      {"phase behind PI", description(pi + "Frequency Dep. (Phase) Model Options\n{\n}"),
       "ERROR: corvo.exe\nMultiple Line Models Selected!\n" + one +
           errorExit("Frequency Dep. (Phase) Model Options"),
       1},
      {"HALO behind PI", description(pi + "HALO Options\n{\n}"), "", 0},
      {"ground behind manual",
       description("Manual Data Entry\n{\n}\nLine Constants Ground Data\n{"),
       ENTRYMETHODS + errorExit("Line Constants Ground Data"), 1},
      {"manual behind tower", description("Line Constants Tower\n{\n}\nManual Data Entry\n{"),
       ENTRYMETHODS + errorExit("Manual Data Entry"), 1},
      {"coax in a line file", description("Coax Cable\n{\n}"),
       cableBlock + lines({"Coax Cable components cannot be", "used on Corvo sub-pages!", STARS}) +
           errorExit("Coax Cable"),
       1},
      {"coax behind four-wire", description("Four-Wire Cable\n{\n}\nCoax Cable\n{\n}"),
       cableBlock + lines({"Coax Cable components cannot be", "used on Corvo sub-pages!", STARS}) +
           errorExit("Coax Cable", 1),
       1, 1},
      {"four-wire in a line file", description("Four-Wire Cable\n{\n}"),
       cableBlock + lines({"Cable components cannot be", "used on Corvo sub-pages!", STARS}) +
           errorExit("Four-Wire Cable"),
       1},
      {"101 cables", description(cables),
       lines({std::string(45, '*'), "Corvo.exe: ERROR", "Too Many Cables Entered (101)!",
              "Cable Number Must be > 0 and <= 100", "Check the Cable Number Data for Each Cable",
              "In the Cable Sub-Page!", std::string(45, '*')}) +
           errorExit("Coax Cable", 1),
       1, 1},
  });
}

TEST(Reader, MissingFile) {
  const ChildResult r = runChild([] {
    RUNDATA.run.FNAME = "no/such.cvi";
    READTLDATA();
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.console,
            lines({"", STARS, fmt::format("Error in Opening Input Data File: {}", "no/such.cvi"),
                   STARS, "READTLDATA Ending!"}));
}

TEST(Reader, SurvivesAnyBytes) {
  std::string binary;
  unsigned state = 1;
  for (int i = 0; i < 20000; ++i) {
    state = state * 1664525u + 1013904223u;
    binary += static_cast<char>(state >> 24);
  }
  EXPECT_EQ(readInChild(binary).status, 0);
  EXPECT_NE(readInChild("CORVO-INPUT-DATA\n" + binary).status, -1);
  EXPECT_EQ(readInChild("CORVO-INPUT-DATA\n" + std::string(1 << 20, 'x')).status, 0);
  const std::string whole = description(summary(3) + threePhaseTower());
  for (std::size_t n = 0; n < whole.size(); ++n) {
    EXPECT_NE(readInChild(whole.substr(0, n)).status, -1) << "cut after " << n << " characters";
  }
}

TEST(Reader, SurvivesWhatTheFuzzerFound) {
  for (const char* kept : {"/fuzz/seeds", "/fuzz/finds"}) {
    const std::filesystem::path folder = std::string(CORVO_TEST_DATA) + kept;
    if (!std::filesystem::exists(folder)) continue;
    for (const auto& file : std::filesystem::directory_iterator(folder)) {
      for (const int iscable : {0, 1}) {
        EXPECT_NE(readInChild(contentOf(file.path()), iscable).status, -1) << file.path();
      }
    }
  }
}

TEST(Reader, KeepsDefaultsAndSetsOptions) {
  readHere(description("Output File Display Options\n{\nParallel R Limit: 1000\n"
                       "Manual Output File : 2\nMan. Output File Name : 'my file.cvo' x\n"
                       "Create PI-Section: 1\nFrequency for Calculation : 0\n}\n"
                       "Bergeron Line Model Options\n{\nInterpolate Travel Times: 0\n"
                       "Frequency for Loss Approximation: 50\nHigh Frequency Approximation: 0\n"
                       "Infinite Line Length: 1\n}\n"));
  EXPECT_EQ(RUNDATA.display.GPARLIM, 0.001);
  EXPECT_FALSE(RUNDATA.display.MANOUT);
  EXPECT_EQ(RUNDATA.display.MANOUTF.text(), "my file.cvo");
  EXPECT_TRUE(RUNDATA.display.CREATEPI);
  EXPECT_EQ(RUNDATA.display.DISPFREQ, 0.001);
  EXPECT_FALSE(RUNDATA.flags.INTTT);
  EXPECT_TRUE(RUNDATA.flags.INFLEN);
  EXPECT_EQ(RUNDATA.bergeron.FLOSS, 60.0); // the steady-state frequency
  EXPECT_TRUE(RUNDATA.model.MODBERG);
  EXPECT_EQ(RUNDATA.run.DATAFMT, ROUTENONE);

  readHere(description("Frequency Dep. (Phase) Model Options\n{\nDC Correction Type: 2\n"
                       "Maximum # of Poles for Series Impedance Fit: 7\n"
                       "Lower frequency for passivity check: 5\n}\nHALO Options\n{\n}\n"));
  EXPECT_EQ(RUNDATA.model.MODEL, 6);
  EXPECT_TRUE(RUNDATA.model.MODFDP);
  EXPECT_TRUE(RUNDATA.fit.DCCORRF);
  EXPECT_EQ(RUNDATA.fit.MAXPZ, 7);
  EXPECT_TRUE(RUNDATA.passivity.PFLOSET);
  EXPECT_EQ(RUNDATA.display.GPARLIM, 1.0e-5); // nothing is left of the file before
  EXPECT_TRUE(RUNDATA.flags.INTTT);
}

TEST(Reader, GroundAndSummary) {
  readHere(description("Line Summary\n{\nLine Name: My Line\nSteady State Frequency: 0\n}\n"
                       "Line Constants Ground Data\n{\nGround Resistivity Type: 1\n"
                       "Ground Resistivity Type: 0\nGroundResistivity: 50,ohm\n"
                       "EarthImpedanceFormula: 2\nEarthUImpedanceFormula: 3\n}\n"));
  EXPECT_EQ(RUNDATA.line.LNAME.text(), "My");
  EXPECT_EQ(RUNDATA.line.LNAMELEN, 3);
  EXPECT_EQ(RUNDATA.line.SSFREQ, 0.001);
  EXPECT_EQ(RUNDATA.display.DISPFREQ, 0.001);
  EXPECT_TRUE(RUNDATA.ground.GRTYPE);
  EXPECT_EQ(RUNDATA.ground.GRHO, 50.0);
  EXPECT_EQ(RUNDATA.ground.EARTHF, 2);
  EXPECT_EQ(RUNDATA.ground.EARTHFU, 3);
  EXPECT_EQ(RUNDATA.ground.EARTHFM, 2);
}

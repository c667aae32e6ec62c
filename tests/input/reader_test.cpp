#include "input/reader.h"

#include "input/reader_cases.h"
#include "store/rundata.h"
#include "support/scratch.h"

#include <filesystem>
#include <fmt/format.h>

using namespace lcp;
using namespace lcp::test;

namespace {

const std::string CIRCUIT = "Line Constants Tower\n{\nCircuit\n{\n";
const std::string PI = "PI Model Options\n{\n}\n";

std::string unknown(const std::string& line) { return "Unknown Data Line Ignored: " + line + "\n"; }

} // namespace

TEST(Reader, SkipsIgnoresAndNamesUnknownLines) {
  const struct {
    std::string text, console;
  } cases[] = {
      {"Line Constants Tower\nanything\n", ""}, // no start mark
      {"DATADSD\nrubbish\n", unknown("rubbish")},
      {description("! a\nComment\n\n   \n C not first"), unknown(" C not first")},
      {description("") + "rubbish\n", ""},
      {"DATADSD\nDATADSO\nrubbish\n", ""},
      {description("PI Model Options\n{\nx: 1\n}\n"), unknown("x: 1")},
      {description("  Line Summary\n   {\n   Number of Conductors: 0\n  }\n"), ""},
      {"CORVO-INPUT-DATA\r\nPI Model Options\r\n{\r\n}\r\n", ""},
      {description(std::string(121, ' ') + "rubbish"), ""},
      {"CORVO-INPUT-DATA\nPI Model Options", ""}, // the file ends where { is due
  };
  for (const auto& c : cases) {
    const ChildResult r = readInChild(c.text);
    EXPECT_EQ(r.console, c.console) << c.text;
    EXPECT_EQ(r.status, 0) << c.text;
  }
}

TEST(Reader, TakesTheCommonErrorExit) {
  const std::string three = CIRCUIT + "Conductors: 3\nSub-ConductorsPerBundle: ";
  check({
      {"PI Model Options\n! note"},
      {"Line Summary\n{\nSteady State Frequency: fifty"},
      {"Line Summary\n{\nNumber of Conductors: 3.5"},
      {"Line Summary\n{\nLine Length: 1e400"},
      {"Line Summary\n{\nNumber of Conductors: -1"},
      {CIRCUIT + "Conductors: -1"},
      {three + "-2"},
      {three + "16", "Circuit   1 has  16 Sub-Conductors,\nMaximum of 15 Allowed!\n"},
      {CIRCUIT + "Conductors: 2\nP1 : 0 1\nRadius: 1"}, // one position is missing
      {"MFDTD Model Options\n{\nTotal Number of Frequency Increments: 99"},
      {CIRCUIT + "Conductor DC Voltage Magnitudex1 : abc"},
  });
}

TEST(Reader, EndsAtItsLimitsWithTheirMessages) {
  const std::string tooMany = "Error, Too Many Conductors! (Max= ,720!)\n";
  const std::string factor = "Line Constants Ground Data\n{\nFD Factor: ";
  check({
      {CIRCUIT + "Conductors: 721\n", tooMany},
      {CIRCUIT + "Conductors: 2147483647\n", tooMany},
      {CIRCUIT + "Conductors: 720\n}\nGroundWires: 1\n{\n", tooMany},
      {CIRCUIT + "Conductors: 361\nSub-ConductorsPerBundle: 2\n{\n", tooMany},
      {summary(49), "Error, Too Many Equivalent Conductors!\n(Max= ,48!)\n"},
      {factor + "0\n",
       "Error: Frequency-dependent resistivity\n       factor must be greater than 0.0.\n"},
  });
}

TEST(Reader, RefusesContradictingSections) {
  const std::string program = "ERROR: corvo.exe\n", one = "Select only one Line Model Type!\n";
  const std::string methods = program + lines({"Multiple Data Entry Methods Selected!",
                                               "Select only one Line Data Entry Type Method!"});
  const auto notHere = [](const std::string& what) {
    return lines({STARS, "Corvo: ERROR", what, "used on Corvo sub-pages!", STARS});
  };
  const std::string coax = notHere("Coax Cable components cannot be");
  check({
      {PI + "PI Model Options", program + "Components for > 1 Line Model Selected!\n" + one},
      {PI + "Frequency Dep. (Phase) Model Options",
       program + "Multiple Line Models Selected!\n" + one},
      {PI + "HALO Options\n{\n}\n"},
      {"Manual Data Entry\n{\n}\nLine Constants Ground Data", methods},
      {"Line Constants Tower\n{\n}\nManual Data Entry", methods},
      {"Coax Cable", coax},
      {"Four-Wire Cable", notHere("Cable components cannot be")},
  });
  check({{"Four-Wire Cable\n{\n}\nCoax Cable", coax}}, 1);
}

TEST(Reader, MissingFile) {
  const ChildResult r = runChild([] {
    RUNDATA.run.FNAME = "no/such.cvi";
    READTLDATA();
  });
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.console, fileError({"Error in Opening Input Data File: no/such.cvi"}));
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
  for (std::size_t n = 0; n < whole.size(); ++n)
    EXPECT_NE(readInChild(whole.substr(0, n)).status, -1) << "cut after " << n << " characters";
  for (const char* kept : {"/fuzz/seeds", "/fuzz/finds"}) {
    for (const auto& file :
         std::filesystem::directory_iterator(CORVO_TEST_DATA + std::string(kept))) {
      for (const int iscable : {0, 1})
        EXPECT_NE(readInChild(contentOf(file.path()), iscable).status, -1) << file.path();
    }
  }
}

TEST(Reader, SetsOptionsAndTheirDefaults) {
  const auto& [D, F, G] = std::tie(RUNDATA.display, RUNDATA.flags, RUNDATA.ground);
  readHere(description("Output File Display Options\n{\nParallel R Limit: 1000\n"
                       "Manual Output File : 2\nMan. Output File Name : 'my file.cvo' x\n}\n"
                       "Bergeron Line Model Options\n{\nInterpolate Travel Times: 0\n"
                       "Frequency for Loss Approximation: 50\nHigh Frequency Approximation: 0\n"
                       "Infinite Line Length: 1\n}\n"));
  EXPECT_EQ(values(D.GPARLIM, D.MANOUT, F.INTTT, F.INFLEN), values(0.001, 0, 0, 1));
  EXPECT_EQ(D.MANOUTF.text(), "my file.cvo");
  EXPECT_EQ(RUNDATA.bergeron.FLOSS, 60.0); // the steady-state frequency
  EXPECT_EQ(RUNDATA.run.DATAFMT, ROUTENONE);
  readHere(description("Frequency Dep. (Phase) Model Options\n{\nDC Correction Type: 2\n"
                       "Lower frequency for passivity check: 5\n}\nHALO Options\n{\n}\n"));
  EXPECT_EQ(values(RUNDATA.model.MODEL, RUNDATA.fit.DCCORRF, RUNDATA.passivity.PFLOSET),
            values(6, 1, 1));
  EXPECT_EQ(values(D.GPARLIM, F.INTTT), values(1.0e-5, 1)); // nothing is left of the file before
  readHere(description("Line Summary\n{\nLine Name: My Line\nSteady State Frequency: 0\n}\n"
                       "Line Constants Ground Data\n{\nGround Resistivity Type: 1\n"
                       "Ground Resistivity Type: 0\nGroundResistivity: 50,ohm\n}\n"));
  EXPECT_EQ(RUNDATA.line.LNAME.text(), "My");
  EXPECT_EQ(RUNDATA.line.LNAMELEN, 3);
  EXPECT_EQ(values(RUNDATA.line.SSFREQ, D.DISPFREQ, G.GRTYPE, G.GRHO), values(0.001, 0.001, 1, 50));
  for (const char* empty : {"", "''"}) { // the first blank is the first character
    readHere(description(fmt::format("Line Summary\n{{\nLine Name: {}\n}}\n", empty)));
    EXPECT_EQ(RUNDATA.line.LNAMELEN, 1) << empty;
  }
}

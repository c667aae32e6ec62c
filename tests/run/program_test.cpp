// The program as its user starts it: arguments, names of files, bad input, files that cannot be
// written.
#include "support/description.h"
#include "support/scratch.h"
#include "support/solve.h"
#include "support/whole_run.h"

#include <filesystem>
#include <fmt/format.h>
#include <gtest/gtest.h>

using namespace lcp::test;

namespace {

const std::string BANNER = "Line Constants Program for the ORVEX V5\nBuild: 2022.10.28\n\n";
const std::string CLOSING = "\nLCP solve constants complete.\n";
const std::string STARS(43, '*');

std::string framed(const std::string& line) {
  return lines({"", STARS, "Corvo.exe: ERROR", line, STARS});
}

std::string bergeronLine() { return description(singleCircuit(bergeronModel())); }

std::vector<std::string> namesOf(const ProgramRun& run) {
  std::vector<std::string> names;
  for (const auto& [name, text] : run.files) names.push_back(name);
  return names;
}

using Names = std::vector<std::string>;

} // namespace

TEST(Program, RefusesBadArguments) {
  const std::string noLength =
      lines({"ERROR: A valid line length must be provided.", "       LCP ending..."});
  const std::string tooLong = "Get argument failed with status = -1\n";
  const std::string thirtyOne(31, '1');
  struct Case {
    std::vector<std::string> arguments;
    std::string console;
    int status;
  };
  const Case cases[] = {
      {{}, noLength, 1},
      {{"/length", "0"}, " Segment length:   0 [m]\n" + noLength, 1},
      {{"/length", "-5"}, " Segment length:   -5 [m]\n" + noLength, 1},
      {{"/length", ""}, " Segment length:    [m]\n" + noLength, 1},
      {{"/length"}, noLength, 1},
      {{"/Length", "5"}, noLength, 1},
      {{"rubbish", "/increment", "1D1"}, " Length Increment: 1D1 [m]\n" + noLength, 1},
      {{"/length", "100 m"}, framed("The value of /length is not a valid number: 100 m"), 1},
      {{"/length", "nan"}, framed("The value of /length is not a valid number: nan"), 1},
      {{"/increment", "1e400"}, framed("The value of /increment is not a valid number: 1e400"), 1},
      {{"/steps", "1.5"}, framed("The value of /steps is not a valid number: 1.5"), 1},
      {{"/steps", "1000"},
       framed("Too Many Length Steps (/steps 1000), Maximum of 999 Allowed!"),
       1},
      {{"/length", thirtyOne}, tooLong, 0},
      {{thirtyOne}, tooLong, 0},
      {{"/file", std::string(201, 'x')}, tooLong, 0},
  };
  const Scratch scratch;
  for (const Case& c : cases) {
    const ProgramRun run = runProgram(c.arguments, scratch.path());
    EXPECT_EQ(run.console, BANNER + c.console);
    EXPECT_EQ(run.status, c.status) << c.console;
    EXPECT_TRUE(run.files.empty());
  }
}

TEST(Program, NamesItsFiles) {
  const Scratch scratch;
  scratch.file("a.cvi", bergeronLine());
  scratch.file("plain", bergeronLine());
  scratch.file("pipe.dta", description(""));
  const auto run = [&](const std::vector<std::string>& arguments) {
    return runProgram(arguments, scratch.path());
  };
  EXPECT_EQ(namesOf(run({"/file", "a.cvi", "/length", "100", "/increment", "5"})),
            (Names{"a.cvo", "a.out"}));
  EXPECT_EQ(namesOf(run({"/file", "plain", "/length", "100"})),
            (Names{"Default.cvo", "Default.out"}));
  EXPECT_EQ(namesOf(run({"/steps", "3", "/file", "a.cvi", "/length", "100", "/increment", "10"})),
            (Names{"a_001.cvo", "a_001.out", "a_002.cvo", "a_002.out", "a_003.cvo", "a_003.out"}));
  const ProgramRun none = run({"/file", "a.cvi", "/length", "100", "/steps", "0"});
  EXPECT_TRUE(none.files.empty());
  EXPECT_EQ(none.status, 0);
  const ProgramRun empty = run({"/file", "pipe.dta", "/length", "100"});
  EXPECT_EQ(empty.status, 1);
  EXPECT_TRUE(
      empty.console.ends_with("***  corvo.exe ERROR ***\nUnknown Data Entry Format: -10\n"));
  const ProgramRun blank = run({"/length", "100"});
  EXPECT_EQ(blank.status, 1);
  EXPECT_NE(blank.console.find("Error in Opening Input Data File: "), std::string::npos);
}

TEST(Program, LengthStepsAreRunsOfTheirOwn) {
  const Scratch scratch;
  for (const char* name : {"a.cvi", "b.cvi"}) {
    // with bases of its own: without them both become 1 for the rest of a run
    scratch.file(name, description(doubleCircuit(
                           bergeronModel("Frequency for Loss Approximation: 2000\n") +
                           "Output File Display Options\n{\nBase Voltage for Display : 230\n"
                           "Base MVA for Display : 100\n}\n")));
  }
  const ProgramRun steps = runProgram(
      {"/file", "a.cvi", "/length", "1e4", "/increment", "5e4", "/steps", "3"}, scratch.path());
  ASSERT_EQ(steps.status, 0);
  int k = 0;
  for (const char* length : {"10000", "60000", "110000"}) {
    const ProgramRun single = runProgram({"/file", "b.cvi", "/length", length}, scratch.path());
    ++k;
    EXPECT_EQ(single.files.at("b.cvo"), steps.files.at(fmt::format("a_00{}.cvo", k)));
    EXPECT_TRUE(single.files.at("b.out") == steps.files.at(fmt::format("a_00{}.out", k))) << k;
  }
  const ProgramRun shrinking = runProgram(
      {"/file", "a.cvi", "/length", "100", "/increment", "-50", "/steps", "3"}, scratch.path());
  EXPECT_EQ(shrinking.status, 1);
  EXPECT_TRUE(shrinking.console.ends_with("       LCP ending...\n"));
}

TEST(Program, SurvivesBadFiles) {
  const Scratch scratch;
  std::filesystem::create_directory(scratch.path() / "folder.cvi");
  scratch.file("null.cvi", std::string("CORVO-INPUT-DATA\n\0\0 x\n", 22));
  scratch.file("radius0.cvi", description(singleCircuit(bergeronModel(), "Radius: 0\n")));
  scratch.file("sag40.cvi", description(singleCircuit(bergeronModel(), "Sag: 40\n")));
  scratch.file("r1e300.cvi", description(singleCircuit(bergeronModel(), "DCResistance: 1e308\n")));
  scratch.file("earth1.cvi", description(singleCircuit("Line Constants Ground Data\n{\n"
                                                       "EarthImpedanceFormula: 1\n}\n" +
                                                       bergeronModel())));
  scratch.file("none.cvi", description("Line Constants Ground Data\n{\n}\n" + bergeronModel()));
  scratch.file("model.cvi", description(singleCircuit("HALO Options\n{\n}\n")));
  struct Case {
    const char* file;
    const char* line;
  };
  const Case cases[] = {
      {"folder.cvi", "Error in Opening Input Data File: folder.cvi"},
      {"missing.cvi", "Error in Opening Input Data File: missing.cvi"},
      {"null.cvi", "Unknown Data Entry Format: -10\n"},
      {"radius0.cvi", "Conductor at X = -10 m, Y = 20 m:\n"
                      "Average Height (16 m) and Radius (0 m) Must be > 0!\n"},
      {"sag40.cvi", "Average Height (-6.666666666666664 m) and Radius (0.015 m) Must be > 0!\n"},
      {"r1e300.cvi", "not Finite Numbers\nVerify Transmission line data\n"},
      {"earth1.cvi", " *ERROR*: Illegal earth return formula selected:\n"
                     "           Ground Formula = 1\n\n"
                     "          Please choose a proper ground return\n"},
      {"none.cvi", "The Line has no Conductors!\n"},
      {"model.cvi", "***** CORVO.EXE - ERROR *****\nUnknown Model Type: 6\n"},
  };
  for (const Case& c : cases) {
    const ProgramRun run = runProgram({"/file", c.file, "/length", "100"}, scratch.path());
    EXPECT_NE(run.console.find(c.line), std::string::npos) << c.file << '\n' << run.console;
    EXPECT_EQ(run.status, 1) << c.file;
    EXPECT_TRUE(run.files.empty()) << c.file;
  }
}

TEST(Program, OutputFilesThatCannotBeOpenedLeaveTheSolve) {
  const Scratch scratch;
  scratch.file("a.cvi", bergeronLine());
  const auto blocked = [](const std::string& name) {
    return lines({"", " ****** corvo.exe: ERROR *****",
                  fmt::format("Cannot Open Output file ! ******{}", name)});
  };
  const std::string echo = " File Name:        a.cvi\n Segment length:   100 [m]\n";
  std::filesystem::create_directory(scratch.path() / "a.out");
  const ProgramRun noReport = runProgram({"/file", "a.cvi", "/length", "100"}, scratch.path());
  EXPECT_EQ(noReport.console, BANNER + echo + blocked("a.out") + CLOSING);
  EXPECT_EQ(noReport.status, 0);
  EXPECT_EQ(namesOf(noReport), (Names{"a.cvo"}));
  std::filesystem::create_directory(scratch.path() / "b.cvo");
  std::filesystem::copy(scratch.path() / "a.cvi", scratch.path() / "b.cvi");
  const ProgramRun noModel = runProgram({"/file", "b.cvi", "/length", "100"}, scratch.path());
  EXPECT_NE(noModel.console.find(blocked("b.cvo")), std::string::npos);
  EXPECT_TRUE(noModel.files.empty()); // the report is not written either
}

TEST(Program, DebugFileTellsProgress) {
  const Scratch scratch;
  scratch.file("a.cvi", description("Line Constants Debug: 1\n" + singleCircuit(bergeronModel())));
  const ProgramRun run = runProgram({"/file", "a.cvi", "/length", "100"}, scratch.path());
  EXPECT_EQ(run.files.at("DEBUG.OUT"),
            fmt::format("File {} Opened, Reading Data.\n", "a.cvi") +
                lines({"Reading Line Summary Data...", "Reading Line 1 Tower Data...",
                       "Reading Circuit 1 Data..", "Reading Ground Wire Data...",
                       "Bergeron Model Selected...", "Reading Bergeron Model Options..."}));
  EXPECT_NE(run.console.find(" FINISHED SECOND FREQUENCY LOOP !\n"), std::string::npos);
}

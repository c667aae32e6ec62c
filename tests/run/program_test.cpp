// The program as its user starts it: names of files, steps of the length, bad bytes, files that
// cannot be written.
#include "support/compare_text.h"
#include "support/description.h"
#include "support/scratch.h"
#include "support/solve.h"
#include "support/whole_run.h"

#include <array>
#include <fmt/format.h>
#include <sys/stat.h>

using namespace lcp::test;

namespace {

// Runs the description of that file, with more arguments.
ProgramRun runFile(const Scratch& scratch, const std::string& file, const std::string& text,
                   const std::vector<std::string>& more = {}) {
  scratch.file(file, text);
  std::vector<std::string> arguments{"/file", file, "/length", "1e5"};
  arguments.insert(arguments.end(), more.begin(), more.end());
  return runProgram(arguments, scratch.path());
}

std::string namesOf(const ProgramRun& run) {
  std::string names;
  for (const auto& file : run.files) names += file.first + " ";
  return names;
}

} // namespace

TEST(Program, NamesItsFiles) {
  const struct {
    std::string file;
    std::vector<std::string> more;
    std::string names;
  } cases[] = {
      {"a.cvi", {"/increment", "5"}, "a.cvo a.out "},
      {"plain", {}, "Default.cvo Default.out "},
      {"a.cvi", {"/steps", "2", "/increment", "1"}, "a_001.cvo a_001.out a_002.cvo a_002.out "},
      {"a.cvi", {"/steps", "0"}, ""},
      {"a.dta", {}, "a.cbo a.out "},
  };
  for (const auto& c : cases) {
    const std::string line = description(singleCircuit(bergeronModel()));
    const ProgramRun run = runFile(Scratch(), c.file, line, c.more);
    EXPECT_EQ(namesOf(run), c.names);
    EXPECT_EQ(run.status, 0);
  }
}

TEST(Program, LengthStepsAreRunsOfTheirOwn) {
  // with bases of its own: without them both become 1 for the rest of a run
  const std::string bases = "Output File Display Options\n{\nBase Voltage for Display : 230\n"
                            "Base MVA for Display : 100\n}\n";
  for (const std::string& model : {bergeronModel("Frequency for Loss Approximation: 2000\n"),
                                   modeModel(), phaseModel(EVENWEIGHTS + "DC Correction Type: 2\n"),
                                   "MFDTD Model Options\n{\n" + EVENWEIGHTS + "}\n"}) {
    // MFDTD keeps the pivots of the length before, which shows in the last digits
    const double within = model.starts_with("MFDTD") ? 1e-12 : 0.0;
    const std::string body = doubleCircuit(model) + bases;
    const ProgramRun steps = runLine(body, "1e4", {"/increment", "5e4", "/steps", "3"});
    ASSERT_EQ(steps.status, 0) << steps.console;
    for (const int k : {1, 2, 3}) {
      const ProgramRun single = runLine(body, fmt::format("{}", 50000 * k - 40000));
      for (const char* kind : {"cvo", "out"}) {
        const std::string& alone = single.files.at(fmt::format("a.{}", kind));
        const std::string& step = steps.files.at(fmt::format("a_00{}.{}", k, kind));
        EXPECT_EQ(textDifferences(alone, step, {within, within, within}), "") << kind << k;
        EXPECT_TRUE(within > 0.0 || alone == step) << kind << k;
      }
    }
  }
  const ProgramRun shrinking =
      runLine(doubleCircuit(bergeronModel()), "100", {"/increment", "-50", "/steps", "3"});
  EXPECT_EQ(shrinking.status, 1);
  EXPECT_TRUE(shrinking.console.ends_with("       LCP ending...\n"));
}

TEST(Program, TellsOfBytesThatAreNoText) {
  const std::pair<std::string, std::string> cases[] = {
      {{"CORVO-INPUT-DATA\n\0\0 x\n", 22},
       "no section describes a tower, a cable, the ground or data entered by hand"},
      {{"\xff\xfe"
        "C\0O\0R\0V\0O\0",
        12},
       "the file is no plain text; save it as ASCII or UTF-8, not UTF-16"},
      {"CORVO-INPUT-DATA\rManual Data Entry\r{\r}\r",
       "its lines must end with a line feed, not a carriage return alone"},
  };
  for (const auto& [text, told] : cases) {
    const ProgramRun run = runFile(Scratch(), "a.cvi", text);
    EXPECT_TRUE(run.console.ends_with("Unknown Data Entry Format: -10\n")) << run.console;
    EXPECT_EQ(run.errors, "corvo: a.cvi: " + told + "\n");
    EXPECT_EQ(run.status, 1);
  }
}

TEST(Program, OutputFilesThatCannotBeOpenedLeaveTheSolve) {
  for (const std::string file : {"a.out", "a.cvo"}) {
    const Scratch scratch;
    ASSERT_EQ(mkfifo(scratch.file(file).c_str(), 0600), 0); // nobody waits for its reader
    const ProgramRun run = runFile(scratch, "a.cvi", description(singleCircuit(bergeronModel())));
    const std::string blocked =
        "\n\n ****** corvo.exe: ERROR *****\nCannot Open Output file ! ******" + file + "\n";
    EXPECT_NE(run.console.find(blocked), std::string::npos) << run.console;
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(namesOf(run), file == "a.out" ? "a.cvo " : ""); // no report without a model file
  }
}

// Of a run that ends early: refusals ahead of the files leave the old ones; a model file is whole
// or absent; a report keeps what tells why; a curve file is whole or empty.
TEST(Program, EarlyEndsLeaveFilesInOrder) {
  const std::string surge = "Data Entry Format:  Surge Impedance and Travel Time\n"
                            "+ve Sequence Resistance: 2e-5\n+ve Sequence Travel Time: 3.4e-9\n"
                            "+ve Sequence Surge Impedance: 270\nEstimate Zero Sequence: ";
  const auto display = [](const std::string& key) {
    return bergeronModel() + "Output File Display Options\n{\n" + key + "\n}\n";
  };
  const std::string bases = display("Base MVA for Display : 100\nBase Voltage for Display : 1e300");
  const std::string curves = "Write Detailed Output Files: 1\n" + EVENWEIGHTS;
  const struct {
    std::string body, console;
    const char* left; // of each file: "o"ld, "n"ew, "e"mpty, "-" for none, "/" a directory
    int status = 1;
  } cases[] = {
      {manualLineOf(3, surge + "0\n", bergeronModel()), "Mode 1 of", "oooo"},
      {manualLineOf(3, surge + "2\n", bases), "Base Values", "oooo"},
      {singleCircuit(bases), ": 1e+300 kV, 100 MVA\n", "oooo"},
      {singleCircuit(modeModel(curves + "Weighting Factor 3: 1e200\n")), "Factor 1e+200 is out",
       "oooo"},
      {manualLineOf(3, surge + "2\n", display("Frequency for Calculation : 1e308")),
       "The velocity (inf ) is not finite", "nnoo"},
      {singleCircuit(phaseModel(curves + "DC Correction Type: 1\n")), "Singularity occurs", "-one"},
      {singleCircuit(phaseModel(curves)), "Cannot Open Output file", "/one", 0},
  };
  for (const auto& c : cases) {
    const Scratch scratch;
    const std::array names{"a.cvo", "a.out", "x_ym.out", "x_hmm.out"};
    for (const char* name : names) scratch.file(name, "old");
    if (*c.left == '/') {
      std::filesystem::remove(scratch.file("a.cvo"));
      std::filesystem::create_directory(scratch.file("a.cvo"));
    }
    const ProgramRun run =
        runFile(scratch, "a.cvi", description("Line Summary\n{\nLine Name: x\n}\n" + c.body));
    EXPECT_NE(run.console.find(c.console), std::string::npos) << run.console;
    EXPECT_EQ(run.status, c.status) << c.console;
    std::string left;
    for (const std::filesystem::path file : names) {
      const bool there = std::filesystem::is_regular_file(scratch.path() / file);
      const std::string text = there ? contentOf(scratch.path() / file) : "-";
      left += std::filesystem::is_directory(scratch.path() / file) ? '/'
              : text.empty()                                       ? 'e'
              : text.size() > 3                                    ? 'n'
                                                                   : text[0];
    }
    EXPECT_EQ(left, c.left) << c.console;
  }
}

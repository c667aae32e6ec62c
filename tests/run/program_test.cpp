// The program as started by a user: length steps, and files that cannot be written.
#include "run/output_names.h"
#include "support/compare_text.h"
#include "support/description.h"
#include "support/scratch.h"
#include "support/solve.h"
#include "support/whole_run.h"

#include <fmt/format.h>
#include <sys/stat.h>

using namespace lcp::test;

namespace {

// "o"ld, "n"ew, "e"mpty, "/" a directory, "|" a pipe, "-" not there.
char stateOf(const std::filesystem::path& file) {
  const std::filesystem::file_status status = std::filesystem::status(file);
  if (is_directory(status)) return '/';
  if (is_fifo(status)) return '|';
  if (!exists(status)) return '-';
  const std::string text = contentOf(file);
  return text.empty() ? 'e' : text == "old" ? 'o' : 'n';
}

} // namespace

TEST(Program, LengthStepsAreRunsOfTheirOwn) {
  // with both bases: otherwise they become 1 for the rest of a run
  const std::string bases =
      "Line Summary\n{\nLine Name: x\n}\nOutput File Display Options\n{\nCreate PI-Section: 1\n"
      "Base Voltage for Display : 230\nBase MVA for Display : 100\n}\n";
  std::string component; // for the last length, at the same frequency for every model
  const std::string shown = "Output File Display Options\n{\nFrequency for Calculation : 1000\n}\n";
  for (const std::string& model :
       {bergeronModel("Frequency for Loss Approximation: 2000\n") + shown, modeModel(),
        phaseModel(EVENWEIGHTS + "DC Correction Type: 2\n"),
        "MFDTD Model Options\n{\n" + EVENWEIGHTS + "}\n"}) {
    // MFDTD keeps the pivots of the previous length, which affects the last digits
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
    if (component.empty()) component = steps.files.at("x.cmp");
    EXPECT_EQ(component, steps.files.at("x.cmp"));
  }
}

// Early ends of a run: errors before the files are opened leave the old ones. A model file is
// complete or absent, and there is no report without it; a report keeps the reason; a curve file
// keeps its heading and the rows so far. An output file that cannot be opened ends the solve, and
// so does a pipe without a reader.
TEST(Program, EarlyEndsLeaveFilesInOrder) {
  const std::string surge = "Data Entry Format:  Surge Impedance and Travel Time\n"
                            "+ve Sequence Resistance: 2e-5\n+ve Sequence Travel Time: 3.4e-9\n"
                            "+ve Sequence Surge Impedance: 270\nEstimate Zero Sequence: ";
  const auto display = [](const std::string& key) {
    return bergeronModel() + "Output File Display Options\n{\n" + key + "\n}\n";
  };
  const std::string bases = display("Base MVA for Display : 100\nBase Voltage for Display : 1e300");
  const std::string curves = "Write Detailed Output Files: 1\n" + EVENWEIGHTS;
  const std::string blocked =
      "\n\n ****** corvo.exe: ERROR *****\nCannot Open Output file ! ******";
  const struct {
    std::string body, console;
    const char* left; // of each file, as stateOf returns it
    int status = 1;
  } cases[] = {
      {manualLineOf(3, surge + "0\n", bergeronModel()), "Mode 1 of", "oooo"},
      {manualLineOf(3, surge + "2\n", bases), "Base Values", "oooo"},
      {singleCircuit(bases), ": 1e+300 kV, 100 MVA\n", "oooo"},
      {singleCircuit(modeModel(curves + "Weighting Factor 3: 1e200\n")), "Factor 1e+200 is out",
       "oooo"},
      {manualLineOf(3, surge + "2\n", display("Frequency for Calculation : 1e308")),
       "The velocity (inf ) is not finite", "nnoo"},
      {singleCircuit(phaseModel(curves + "DC Correction Type: 1\n")), "Singularity occurs", "-onn"},
      {singleCircuit(phaseModel(curves)), "Cannot Open Output file", "/onn", 0},
      {singleCircuit(bergeronModel()), blocked + "a.cvo\n", "|ooo", 0},
      {singleCircuit(bergeronModel()), blocked + "a.out\n", "n|oo", 0},
  };
  for (const auto& c : cases) {
    const Scratch scratch;
    const char* const names[] = {"a.cvo", "a.out", "x_ym.out", "x_hmm.out"};
    for (int i = 0; i < 4; ++i) {
      const std::string file = scratch.file(names[i]);
      if (c.left[i] == '/') std::filesystem::create_directory(file);
      if (c.left[i] == '|') mkfifo(file.c_str(), 0600); // nobody waits for its reader
      if (!std::filesystem::exists(file)) writeContent(file, "old");
    }
    scratch.file("a.cvi", description("Line Summary\n{\nLine Name: x\n}\n" + c.body));
    const ProgramRun run = runProgram({"/file", "a.cvi", "/length", "1e5"}, scratch.path());
    EXPECT_NE(run.console.find(c.console), std::string::npos) << run.console;
    EXPECT_EQ(run.status, c.status) << c.console;
    std::string left;
    for (const char* name : names) left += stateOf(scratch.path() / name);
    EXPECT_EQ(left, c.left) << c.console;
  }
}

TEST(Program, WhatStandsBehindTheExtensionStaysBehindTheNames) {
  lcp::RunControl run;
  run.FNAME = "a.cvi-long-name";
  const lcp::BaseName base = lcp::chooseBaseName(run);
  for (const auto& [steps, name] : {std::pair{1, "a.cvo long-name"}, {3, "a_002.cvo -name"}}) {
    run.FOUTM = run.FNAME;
    lcp::nameOutputs(run, base, 2, steps);
    EXPECT_EQ(run.FOUTM.text(), name);
  }
}

// The manual entry route as a whole: data and files that it cannot take.
#include "support/description.h"
#include "support/scratch.h"
#include "support/solve.h"
#include "support/whole_run.h"

#include <gtest/gtest.h>

using namespace lcp::test;

namespace {

const std::string SURGE = "Data Entry Format:  Surge Impedance and Travel Time\n"
                          "+ve Sequence Resistance: 2e-5\n+ve Sequence Travel Time: 3.4e-9\n"
                          "+ve Sequence Surge Impedance: 270\n";
const std::string STARS(43, '*');

// With what the console shows behind the banner and the arguments.
ProgramRun runIn(const Scratch& scratch, const std::string& keys, int n) {
  scratch.file("a.cvi", description(manualLineOf(n, keys, bergeronModel())));
  ProgramRun run = runProgram({"/file", "a.cvi", "/length", "100000"}, scratch.path());
  const std::string last = " Segment length:   100000 [m]\n";
  run.console = run.console.substr(run.console.find(last) + last.size());
  return run;
}

std::string refusal(std::initializer_list<std::string> words) {
  return lines({"", STARS, "Corvo.exe: ERROR"}) + lines(words) + lines({STARS, "MANLINE Ending!"});
}

} // namespace

TEST(ManualLine, RefusesDataWithoutModes) {
  const std::string noMode = refusal({"Mode 1 of the Manual Data has no Travel Time and Surge",
                                      "Impedance Above 0, or no Finite Resistance.",
                                      "Check input data for Manual Entry of Z,Y"});
  const std::string dots(34, '.'), X1 = "+ve Sequence Inductive Reactance: 3e-9\n",
                                   XC1 = "+ve Sequence Capacitive Reactance: 3e3\n";
  const struct {
    std::string keys;
    int n;
    std::string console;
    int status = 1;
  } cases[] = {
      {SURGE, 0, refusal({"The Line has no Conductors!"})},
      {"", 3, refusal({"Manual Data Entry has no Data Entry Format!"})},
      {"Data Entry Format:  Multiple Y and Z\n", 3,
       refusal({"Multiple Y and Z Data: no File was Read, or a Summary",
                "behind it Selects Manually Entered Data!"})},
      {SURGE + "Estimate Zero Sequence: 3\n", 3,
       refusal({"Estimate Zero Sequence Must be 0, 1 or 2, not 3!"})},
      {SURGE, 3, noMode},                                 // no zero sequence
      {SURGE + "Estimate Zero Sequence: 1\n", 3, noMode}, // ratios of 0
      {SURGE + "+ve Sequence Surge Impedance: 0\n", 1, noMode},
      {"Data Entry Format:  ohms/m\n" + X1, 1, noMode}, // XC of 0
      {"Data Entry Format:  p.u./m\nTotal MVA Rating: 0\n" + X1 + XC1, 1, noMode},
      {"Data Entry Format:  Y and Z\n", 1, noMode}, // no file
      // values of a length that they cannot be of
      {SURGE + "Long Line Corrected: 1\n+ve Sequence Travel Time: 1e-7\n", 1,
       lines({dots, "An error occurred in calculating impedance    and admittance matrices ",
              "Check input data for Manual Entry of Z,Y",
              "Some of the input data must be expressed per  unit length", dots, "",
              "LCP solve constants complete."}),
       2},
  };
  for (const auto& c : cases) {
    const ProgramRun run = runIn(Scratch(), c.keys, c.n);
    EXPECT_EQ(run.console, c.console) << c.keys;
    EXPECT_EQ(run.status, c.status) << c.keys;
  }
}

TEST(ManualLine, NeedsItsModelFileButNotItsReport) {
  const std::string keys = SURGE + "Estimate Zero Sequence: 2\n";
  const std::string cannot = "\n ****** corvo.exe: ERROR *****\nCannot Open ";
  const Scratch noReport, noModel;
  std::filesystem::create_directory(noReport.file("a.out"));
  std::filesystem::create_directory(noModel.file("a.cvo"));
  const ProgramRun goesOn = runIn(noReport, keys, 3), ends = runIn(noModel, keys, 3);
  EXPECT_EQ(goesOn.status, 0);
  EXPECT_TRUE(goesOn.console.starts_with(cannot + "Output file ! ******a.out\n\n RXB:  0.2000"));
  EXPECT_EQ(ends.status, 1);
  EXPECT_EQ(ends.console, cannot + "corvo Output file ! ******\n");
}

TEST(ManualLine, TellsOfANegativeResistanceOfAPair) {
  const Scratch scratch;
  scratch.file("p.txt", "Y:\n0 1e-4\nZ:\n-3 30\n");
  const std::string keys =
      "Data Entry Format:  Y and Z\nYZ Data Format: 1\nY,Z Input File Name: p.txt\n";
  scratch.file("a.cvi", description(manualLineOf(1, keys, bergeronModel())));
  const ProgramRun run = runProgram({"/file", "a.cvi", "/length", "100"}, scratch.path());
  const std::string note = "corvo: mode 1 has a negative resistance of -3 at 60 Hz; the model file "
                           "has 3\n";
  EXPECT_EQ(run.errors, note);
  EXPECT_EQ(run.status, 0);
}

// The program as its user starts it: arguments, names of files, bad input, files that cannot be
// written.
#include "support/child.h"
#include "support/description.h"
#include "support/scratch.h"
#include "support/solve.h"
#include "support/whole_run.h"

#include <array>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace lcp::test;

namespace {

std::string namesOf(const ProgramRun& run) {
  std::string names;
  for (const auto& file : run.files) names += file.first + " ";
  return names;
}

} // namespace

TEST(Program, NamesItsFiles) {
  const std::string line = description(singleCircuit(bergeronModel()));
  const struct {
    std::string file;
    std::vector<std::string> more;
    std::string names;
  } cases[] = {
      {"a.cvi", {"/increment", "5"}, "a.cvo a.out "},
      {"plain", {}, "Default.cvo Default.out "},
      {"a.cvi", {"/steps", "2", "/increment", "1"}, "a_001.cvo a_001.out a_002.cvo a_002.out "},
      {"a.cvi", {"/steps", "0"}, ""},
  };
  for (const auto& c : cases) {
    const Scratch scratch;
    scratch.file(c.file, line);
    std::vector<std::string> arguments{"/file", c.file, "/length", "100"};
    arguments.insert(arguments.end(), c.more.begin(), c.more.end());
    const ProgramRun run = runProgram(arguments, scratch.path());
    EXPECT_EQ(namesOf(run), c.names);
    EXPECT_EQ(run.status, 0);
  }
}

TEST(Program, LengthStepsAreRunsOfTheirOwn) {
  // with bases of its own: without them both become 1 for the rest of a run
  const std::string bases = "Output File Display Options\n{\nBase Voltage for Display : 230\n"
                            "Base MVA for Display : 100\n}\n";
  for (const std::string& model :
       {bergeronModel("Frequency for Loss Approximation: 2000\n"), modeModel(),
        phaseModel(EVENWEIGHTS + "DC Correction Type: 2\n")}) {
    const std::string body = doubleCircuit(model) + bases;
    const ProgramRun steps = runLine(body, "1e4", {"/increment", "5e4", "/steps", "3"});
    ASSERT_EQ(steps.status, 0) << steps.console;
    for (const int k : {1, 2, 3}) {
      const ProgramRun single = runLine(body, fmt::format("{}", 50000 * k - 40000));
      for (const char* kind : {"cvo", "out"}) {
        EXPECT_TRUE(single.files.at(fmt::format("a.{}", kind)) ==
                    steps.files.at(fmt::format("a_00{}.{}", k, kind)))
            << kind << k;
      }
    }
  }
  const ProgramRun shrinking =
      runLine(doubleCircuit(bergeronModel()), "100", {"/increment", "-50", "/steps", "3"});
  EXPECT_EQ(shrinking.status, 1);
  EXPECT_TRUE(shrinking.console.ends_with("       LCP ending...\n"));
}

TEST(Program, SurvivesBadFiles) {
  const Scratch scratch;
  std::filesystem::create_directory(scratch.file("folder.cvi"));
  const auto circuit = [](const std::string& keys) {
    return description(singleCircuit(bergeronModel(), keys));
  };
  const auto earth = [](const std::string& keys) {
    return "Line Constants Ground Data\n{\n" + keys + "}\n" + bergeronModel();
  };
  // 33 nodes end in column 118, a 34th does not fit
  const auto wide = [](int n, const std::string& behind) {
    std::string text = summary(n) + fmt::format("Line Constants Tower\n{{\nCircuit\n{{\n"
                                                "Conductors: {}\nConductor Phase Information:",
                                                n);
    for (int i = 1; i <= n; ++i) text += fmt::format(" {}", i);
    return description(text + behind + "\n}\n}\n");
  };
  const std::string none = "Unknown Data Entry Format: -10\n",
                    lineFeed = "its lines must end with a line feed, not a carriage return alone";
  const struct {
    const char* file;
    std::string text, console, errors{};
  } cases[] = {
      {"", "", "Error in Opening Input Data File: "},
      {"folder.cvi", "", "Error in Opening Input Data File: folder.cvi"},
      {"missing.cvi", "", "Error in Opening Input Data File: missing.cvi"},
      {"pipe.dta", description(""), "***  corvo.exe ERROR ***\n" + none,
       "no section describes a tower, a cable, the ground or data entered by hand"},
      {"null.cvi", std::string("CORVO-INPUT-DATA\n\0\0 x\n", 22), none,
       "no section describes a tower, a cable, the ground or data entered by hand"},
      {"start.cvi", "Line Summary\n{\n}\n", none,
       "no line begins with CORVO-INPUT-DATA or DATADSD"},
      {"wide.cvi",
       std::string("\xff\xfe"
                   "C\0O\0R\0V\0O\0",
                   12),
       none, "the file is no plain text; save it as ASCII or UTF-8, not UTF-16"},
      {"old.cvi", "CORVO-INPUT-DATA\rManual Data Entry\r{\r}\r", none, lineFeed},
      {"33.cvi", wide(33, " nodes"), " have identical positions."},
      {"34.cvi", wide(34, ""), " have identical positions.",
       "Conductor Phase Information of circuit 1 is cut at column 120"},
      {"radius0.cvi", circuit("Radius: 0\n"),
       "Conductor at X = -10 m, Y = 20 m:\n"
       "Average Height (16 m) and Radius (0 m) Must be > 0!\n"},
      {"sag40.cvi", circuit("Sag: 40\n"), "Average Height (-6.667 m) and Radius"},
      {"r1e308.cvi", circuit("DCResistance: 1e308\n"),
       "not Finite Numbers\nVerify Transmission line data\n"},
      {"halo.cvi",
       description(summary(7) + threePhaseTower() + bergeronModel() + "HALO Options\n{\n}\n"),
       "Sections. The first 7 Must be Phase Conductors or Kept\n"
       "Ground Wires, as the Number of Conductors says, not 3!\n"},
      {"earth1.cvi", description(singleCircuit(earth("EarthImpedanceFormula: 1\n"))),
       " *ERROR*: Illegal earth return formula selected:\n           Ground Formula = 1\n\n"
       "          Please choose a proper ground return\n"},
      {"none.cvi", description(earth("")), "The Line has no Conductors!\n"},
      {"model.cvi", description(singleCircuit("HALO Options\n{\n}\n")),
       "***** CORVO.EXE - ERROR *****\nUnknown Model Type: 6\n"},
  };
  for (const auto& c : cases) {
    if (!c.text.empty()) scratch.file(c.file, c.text);
    const ProgramRun run = runProgram({"/length", "100", "/file", c.file}, scratch.path());
    EXPECT_NE(run.console.find(c.console), std::string::npos) << c.file << '\n' << run.console;
    const std::string note = fmt::format("corvo: {}: {}\n", c.file, c.errors);
    EXPECT_EQ(run.errors, c.errors.empty() ? "" : note);
    EXPECT_EQ(run.status, 1) << c.file;
    EXPECT_TRUE(run.files.empty()) << c.file;
  }
}

TEST(Program, WarnsOfFilesOfYAndZ) {
  const auto file = [](const char* name, const std::string& text) {
    return fmt::format("Y,Z Input File Name: '{}'\n", scratchFile(name, text));
  };
  const auto table = [&](const char* frequency) {
    const std::string text = fmt::format("\n1\n1\n{}\n1e-4\n1e-3\n0\n1e-9\n", frequency);
    return "Data Entry Format:  Multiple Y and Z\n" + file(frequency, text);
  };
  const std::string cut = file("cut.txt", "Z:\n1e-4 1e-3\nY:\n0 1e-9\nZ:\n1e-4\n"),
                    pi = "PI Model Options\n{\n}\n", format = "Data Entry Format:  Y and Z\n",
                    notRead = "corvo: a.cvi: the file of Y and Z was not read; Y,Z Input File Name "
                              "must stand behind Data Entry Format\n";
  const struct {
    std::string keys, model, warning;
    int status;
    std::string errors{};
  } cases[] = {
      {format + cut, bergeronModel(), "*WARNING*: Data File Ends Inside a Matrix: ", 2},
      {table("12.3456"), pi,
       "*WARNING*: The PI Model Takes the First of the Y and Z Data, at 12.35 Hz\n", 2},
      {table("60"), pi, "", 0},
      {cut + format, bergeronModel(), " no Travel Time and Surge\n", 1, notRead},
      {cut + "Data Entry Format:  ohms/m\n", bergeronModel(), " no Travel Time and Surge\n", 1},
  };
  for (const auto& c : cases) {
    const ProgramRun run = runLine(manualLineOf(1, c.keys, c.model), "1000");
    EXPECT_NE(run.console.find(c.warning), std::string::npos) << run.console;
    EXPECT_EQ(run.status, c.status) << c.keys;
    EXPECT_EQ(run.errors, c.errors);
  }
}

TEST(Program, OutputFilesThatCannotBeOpenedLeaveTheSolve) {
  for (const std::string file : {"a.out", "a.cvo"}) {
    const Scratch scratch;
    scratch.file("a.cvi", description(singleCircuit(bergeronModel())));
    ASSERT_EQ(mkfifo(scratch.file(file).c_str(), 0600), 0); // nobody waits for its reader
    const ProgramRun run = runProgram({"/file", "a.cvi", "/length", "100"}, scratch.path());
    const std::string blocked =
        lines({"", " ****** corvo.exe: ERROR *****", "Cannot Open Output file ! ******" + file});
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
  const std::string heavy = modeModel(curves + "Weighting Factor 3: 1e200\n");
  const struct {
    std::string body, console;
    std::array<std::string, 4>
        left; // "old", "new", "" for an empty file, "-" for none, "/" a directory
    int status = 1;
  } cases[] = {
      {manualLineOf(3, surge + "0\n", bergeronModel()), "Mode 1 of", {"old", "old", "old", "old"}},
      {manualLineOf(3, surge + "2\n", bases), "Base Values", {"old", "old", "old", "old"}},
      {singleCircuit(bases), ": 1e+300 kV, 100 MVA\n", {"old", "old", "old", "old"}},
      {singleCircuit(heavy), "Factor 1e+200 is out", {"old", "old", "old", "old"}},
      {manualLineOf(3, surge + "2\n", display("Frequency for Calculation : 1e308")),
       "The velocity (inf ) is not finite",
       {"new", "new", "old", "old"}},
      {singleCircuit(phaseModel(curves + "DC Correction Type: 1\n")),
       "Singularity occurs",
       {"-", "old", "new", ""}},
      {singleCircuit(phaseModel(curves)), "Cannot Open Output file", {"/", "old", "new", ""}, 0},
  };
  const std::array names{"a.cvo", "a.out", "x_ym.out", "x_hmm.out"};
  for (const auto& c : cases) {
    const Scratch scratch;
    scratch.file("a.cvi", description("Line Summary\n{\nLine Name: x\n}\n" + c.body));
    for (const char* name : names) scratch.file(name, "old");
    if (c.left[0] == "/") {
      std::filesystem::remove(scratch.file("a.cvo"));
      std::filesystem::create_directory(scratch.file("a.cvo"));
    }
    const ProgramRun run = runProgram({"/file", "a.cvi", "/length", "1e5"}, scratch.path());
    EXPECT_NE(run.console.find(c.console), std::string::npos) << run.console;
    EXPECT_EQ(run.status, c.status) << c.console;
    for (std::size_t i = 0; i < names.size(); ++i) {
      std::string text = std::filesystem::is_directory(scratch.file(names[i])) ? "/" : "-";
      if (std::filesystem::is_regular_file(scratch.file(names[i])))
        text = contentOf(scratch.file(names[i]));
      EXPECT_EQ(text.size() > 3 ? "new" : text, c.left[i]) << c.console << names[i];
    }
  }
}

TEST(Program, DebugFileTellsProgress) {
  const ProgramRun run =
      runLine("Line Constants Debug: 1\n" + singleCircuit(bergeronModel()), "100");
  EXPECT_EQ(run.files.at("DEBUG.OUT"),
            lines({"File a.cvi Opened, Reading Data.", "Reading Line Summary Data...",
                   "Reading Line 1 Tower Data...", "Reading Circuit 1 Data..",
                   "Reading Ground Wire Data...", "Bergeron Model Selected...",
                   "Reading Bergeron Model Options..."}));
  EXPECT_NE(run.console.find(" FINISHED SECOND FREQUENCY LOOP !\n"), std::string::npos);
}

// The phase model from end to end: what the model file holds is read back on its own and compared
// with the Yc and H of the line and with the errors that the console shows.
#include "base/constants.h"
#include "store/rundata.h"
#include "store/solvedata.h"
#include "support/dense_functions.h"
#include "support/description.h"
#include "support/phase_file.h"
#include "support/scratch.h"
#include "support/solve.h"
#include "support/whole_run.h"

#include "fit/dc_values.h"

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <sstream>

using namespace lcp;
using namespace lcp::test;

namespace {

const std::string WEIGHTS = "Weighting Factor 1: 1\nWeighting Factor 2: 1\nWeighting Factor 3: 1\n";

struct PhaseRun {
  ProgramRun run;
  PhaseFile file;
};

PhaseRun runPhase(const std::string& body, double length) {
  const Scratch scratch;
  scratch.file("a.cvi", description(body));
  PhaseRun p{runProgram({"/file", "a.cvi", "/length", fmt::format("{}", length)}, scratch.path()),
             {}};
  p.file = readPhaseFile(p.run.files["a.cvo"]);
  return p;
}

// The first number of the line that stands so many lines behind the last line with the words.
double numberBehind(const std::string& console, const std::string& words, int lines, int item = 1) {
  std::size_t at = console.rfind(words);
  if (at == std::string::npos) return -1;
  for (int i = 0; i < lines; ++i) at = console.find('\n', at) + 1;
  std::istringstream line(console.substr(at));
  std::string unit;
  double value = -1;
  for (int i = 0; i < item; ++i) line >> value >> unit;
  return value;
}

long double largest(const Dense& A) {
  long double m = 0;
  for (const auto& row : A) {
    for (const Wide& a : row) m = std::max(m, std::abs(a));
  }
  return m;
}

template <class Store> Dense sample(const Store& store, int k) {
  static LineMatrix M;
  store.load(k, M, RUNDATA.line.NC);
  return corner(M, RUNDATA.line.NC);
}

struct Deviation {
  double yc = 0, h = 0; // per cent
};

// Largest deviations of the file's model from the line that was solved last in this process.
Deviation deviation(const PhaseFile& file) {
  long double yc = 0, scale = 0, h = 0;
  for (int k = 1; k <= SOLVEDATA.grid.NFREQ - 1; ++k) {
    const Wide s(0, SOLVEDATA.grid.WFREQ[k]);
    const Dense Yc = sample(SOLVEDATA.second.YCST, k);
    yc = std::max(yc, largest(sum(file.Yc(s), Yc, -1)));
    scale = std::max(scale, largest(Yc));
    h = std::max(h, largest(sum(file.H(s), sample(SOLVEDATA.second.HST, k), -1)));
  }
  return {static_cast<double>(100 * yc / scale), static_cast<double>(100 * h)};
}

std::string bipole(const std::string& model) {
  return summary(2) +
         "Line Constants Tower\n{\nCircuit\n{\nConductors: 2\nConductor Phase Information: 1 2\n"
         "Radius: 0.02\nDCResistance: 0.03\nShuntConductance: 1e-11\nSag: 10\nP1 : -7 30\n"
         "P2 : 7 30\n}\nGroundWires: 1\n{\nRadius: 0.007\nDCResistance: 1.5\nSag: 7\nP1 : 0 "
         "42\n}\n}\n" +
         model;
}

const std::string SHUNT = "ShuntConductance: 1e-11\n";

} // namespace

TEST(PhaseModel, TheFileIsTheLineToThePrintedErrors) {
  const std::string model = phaseModel(WEIGHTS);
  struct Case {
    const char* what;
    std::string body;
  };
  const Case cases[] = {
      {"untransposed", singleCircuit(model, SHUNT)},
      {"transposed", singleCircuit(model, SHUNT + "Transposed: 1\n")},
      {"double circuit", doubleCircuit(model)},
      {"bipole", bipole(model)},
  };
  for (const Case& c : cases) {
    for (const double length : {1e3, 1e5, 5e5}) {
      const std::string where = fmt::format("{} {}", c.what, length);
      solveBothLoops(c.body, length);
      const PhaseRun p = runPhase(c.body, length);
      ASSERT_EQ(p.file.trouble, "") << where << p.run.console;
      const Deviation d = deviation(p.file);
      EXPECT_NEAR(d.yc, numberBehind(p.run.console, " Yc:          Maximum", 3), 6e-5) << where;
      EXPECT_NEAR(d.h, numberBehind(p.run.console, " Hphase:      Maximum", 3), 6e-5) << where;
      EXPECT_LT(d.yc, 2.0) << where;
      EXPECT_LT(d.h, 2.0) << where;
      EXPECT_EQ(p.file.badPoles(), 0) << where;
      for (const long double tau : p.file.delays) {
        EXPECT_GT(tau, 0.0L) << where;
        EXPECT_LT(tau, 1.2 * length / 2.9e8) << where;
      }
      EXPECT_EQ(p.run.status, 0) << where;
    }
  }
}

TEST(PhaseModel, AtZeroFrequencyTheModelIsTheCorrectedOne) {
  static RealMatrix Y, H;
  for (const int type : {1, 2}) {
    const std::string keys = WEIGHTS + fmt::format("DC Correction Type: {}\n", type);
    for (const std::string& body : {singleCircuit(phaseModel(keys), SHUNT),
                                    singleCircuit(phaseModel(keys), SHUNT + "Transposed: 1\n"),
                                    doubleCircuit(phaseModel(keys))}) {
      solveBothLoops(body, 1e5);
      DCVALUES(Y, H);
      const PhaseRun p = runPhase(body, 1e5);
      ASSERT_EQ(p.file.trouble, "") << p.run.console;
      const Dense Yc = p.file.Yc(0), Hm = p.file.H(0);
      for (int r = 1; r <= RUNDATA.line.NC; ++r) {
        for (int c = 1; c <= RUNDATA.line.NC; ++c) {
          const auto i = static_cast<std::size_t>(r - 1), j = static_cast<std::size_t>(c - 1);
          EXPECT_NEAR(static_cast<double>(Yc[i][j].real()), Y(r, c), 1e-9 * std::fabs(Y(1, 1)));
          EXPECT_NEAR(static_cast<double>(Hm[i][j].real()), H(r, c), 1e-8) << type;
        }
      }
      EXPECT_LT(numberBehind(p.run.console, " Final Fit:   Maximum", 3), 2.0);
    }
  }
}

TEST(PhaseModel, DcValuesAreThoseOfTheResistances) {
  // At zero frequency: gamma = sqrt(G R), Yc = gamma^-1 G, H = exp(-l gamma). The wires couple by
  // 2e-8 of their own resistance, which is below what the eigen package tells apart.
  static RealMatrix Y, H;
  solveBothLoops(doubleCircuit(phaseModel()), 1e5);
  DCVALUES(Y, H);
  const int n = RUNDATA.line.NC;
  Dense G = corner(SOLVEDATA.first.YMAT, n), R = corner(SOLVEDATA.first.ZMAT, n);
  const Dense gamma = squareRoot(product(G, R));
  const Dense Yc = product(inverse(gamma), G), Hx = exponential(times(-1e5L, gamma));
  for (int r = 1; r <= n; ++r) {
    for (int c = 1; c <= n; ++c) {
      const auto i = static_cast<std::size_t>(r - 1), j = static_cast<std::size_t>(c - 1);
      EXPECT_NEAR(Y(r, c), static_cast<double>(Yc[i][j].real()), 2e-8 * std::abs(Y(1, 1)));
      EXPECT_NEAR(H(r, c), static_cast<double>(Hx[i][j].real()), 2e-8);
    }
  }
}

TEST(PhaseModel, WarnsWhenTheAdmittanceFitIsShort) {
  const PhaseRun p = runPhase(
      singleCircuit(phaseModel(WEIGHTS + "Maximum # of Poles for Surge Admittance Fit: 1\n"
                                         "Maximum Fitting Error (%) for Surge Admittance: 0.01\n"),
                    SHUNT),
      1e5);
  EXPECT_EQ(p.run.status, 2);
  EXPECT_NE(p.run.console.find(
                lines({"", "*WARNING*: The relative fitting error exceeds the ",
                       "           maximum requested. This may be partially",
                       "           improved by increasing the maximum # of", "           poles."})),
            std::string::npos);
  EXPECT_EQ(p.file.yPoles.size(), 1U);
}

TEST(PhaseModel, ConsoleTableOfTheAdmittanceFit) {
  const PhaseRun p = runPhase(singleCircuit(phaseModel(WEIGHTS), SHUNT), 1e5);
  const std::string rule = " " + std::string(68, '=');
  EXPECT_NE(p.run.console.find(lines(
                {"", "", rule, " CURVE FITTING OUTPUT", rule, "",
                 " Fitting Characteristic Admittance Yc:", rule,
                 fmt::format(" Maximum Fitting Error Requested: {:24}{:9.4f} %", "", 2.0),
                 fmt::format(" Maximum Number of Poles: {:38}{:3}", "", 20), "",
                 " Yc:          Maximum          Number", "              Fitting Error    of Poles",
                 "              --------------   --------"})),
            std::string::npos)
      << p.run.console;
}

TEST(PhaseModel, AManualFileReplacesTheModelFile) {
  const Scratch scratch;
  scratch.file("a.cvi", description(singleCircuit(phaseModel(WEIGHTS), SHUNT) +
                                    "Output File Display Options\n{\nManual Output File : 1\n"
                                    "Man. Output File Name : manual.cvo\n}\n"));
  const auto run = [&] { return runProgram({"/file", "a.cvi", "/length", "1e5"}, scratch.path()); };
  const ProgramRun missing = run();
  EXPECT_NE(missing.console.find(fmt::format("Cannot Open Output file ! ******{}\n", "manual.cvo")),
            std::string::npos);
  EXPECT_EQ(missing.files.count("a.out"), 0U);
  scratch.file("manual.cvo", "short\n" + std::string(150, 'x') + "\n");
  const ProgramRun copied = run();
  EXPECT_EQ(copied.files.at("a.cvo"), fmt::format("{:<99}\n{}\n", "short", std::string(99, 'x')));
  EXPECT_EQ(copied.files.count("a.out"), 1U);
}

TEST(PhaseModel, LengthStepsAreRunsOfTheirOwn) {
  const Scratch scratch;
  const std::string body = singleCircuit(phaseModel(WEIGHTS + "DC Correction Type: 2\n"), SHUNT);
  scratch.file("a.cvi", description(body));
  scratch.file("b.cvi", description(body));
  const ProgramRun steps = runProgram(
      {"/file", "a.cvi", "/length", "1e4", "/increment", "9e4", "/steps", "2"}, scratch.path());
  for (const auto& [length, step] : {std::pair{"1e4", "001"}, {"1e5", "002"}}) {
    const ProgramRun single = runProgram({"/file", "b.cvi", "/length", length}, scratch.path());
    EXPECT_TRUE(single.files.at("b.cvo") == steps.files.at(fmt::format("a_{}.cvo", step))) << step;
  }
}

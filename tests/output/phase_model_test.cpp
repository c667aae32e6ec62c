// The phase model from end to end: what the model file holds is read back on its own and compared
// with the Yc and H of the line and with the errors that the console shows.
#include "fit/dc_values.h"
#include "fit/fit_driver.h"
#include "fit/mode_model.h"
#include "modal/second_loop.h"
#include "store/rundata.h"
#include "store/solvedata.h"
#include "support/child.h"
#include "support/description.h"
#include "support/scratch.h"
#include "support/solve.h"
#include "support/whole_run.h"
#include "support/written_model.h"

#include <cmath>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <sstream>

using namespace lcp;
using namespace lcp::test;

namespace {

// The number at the start of the third line behind the last one with the words.
double numberBehind(const std::string& console, const std::string& words) {
  std::size_t at = console.rfind(words);
  if (at == std::string::npos) return -1;
  for (int i = 0; i < 3; ++i) at = console.find('\n', at) + 1;
  return std::stod(console.substr(at));
}

Dense dense(const RealMatrix& A) {
  return formed(static_cast<std::size_t>(RUNDATA.line.NC), [&](std::size_t i, std::size_t j) {
    return A(static_cast<int>(i) + 1, static_cast<int>(j) + 1);
  });
}

// An untransposed line, one of equal modes, and one of many.
std::vector<std::string> linesOf(const std::string& model) {
  const std::string shunt = "ShuntConductance: 1e-11\n";
  return {singleCircuit(model, shunt), singleCircuit(model, shunt + "Transposed: 1\n"),
          doubleCircuit(model)};
}

} // namespace

TEST(PhaseModel, TheFileIsTheLineToThePrintedErrors) {
  for (const std::string& body : linesOf(phaseModel(EVENWEIGHTS))) {
    for (const double length : {1e3, 1e5, 5e5}) {
      solveBothLoops(body, length);
      const ProgramRun run = runLine(body, fmt::format("{}", length));
      const ModelFile file = readModel(run.files.at("a.cvo"));
      double yc = 0, scale = 0, h = 0;
      for (int k = 1; k <= SOLVEDATA.grid.NFREQ - 1; ++k) {
        const Complex s(0, SOLVEDATA.grid.WFREQ[k]);
        const Dense Yc = stepOf(SOLVEDATA.second.YCST, k), H = stepOf(SOLVEDATA.second.HST, k);
        yc = std::max(yc, largest(sum(denseOf(file.Yc.at(s)), Yc, -1)));
        scale = std::max(scale, largest(Yc));
        h = std::max(h, largest(sum(denseOf(file.H.at(s)), H, -1)));
      }
      EXPECT_NEAR(100 * yc / scale, numberBehind(run.console, " Yc:          Maximum"), 6e-5);
      EXPECT_NEAR(100 * h, numberBehind(run.console, " Hphase:      Maximum"), 6e-5) << length;
      EXPECT_LT(std::max(yc / scale, h), 0.02) << length;
      for (const double tau : file.H.delays)
        EXPECT_TRUE(tau > 0.0 && tau < 1.2 * length / 2.9e8) << length;
      EXPECT_EQ(run.status, 0) << length;
    }
  }
}

TEST(PhaseModel, AtZeroFrequencyTheModelIsTheCorrectedOne) {
  static RealMatrix Y, H;
  for (const int type : {1, 2}) {
    for (const std::string& body :
         linesOf(phaseModel(EVENWEIGHTS + fmt::format("DC Correction Type: {}\n", type)))) {
      solveBothLoops(body, 1e5);
      DCVALUES(Y, H);
      const ProgramRun run = runLine(body, "1e5");
      const ModelFile file = readModel(run.files.at("a.cvo"));
      EXPECT_LT(distance(denseOf(file.Yc.at(0)), dense(Y)), 1e-9);
      EXPECT_LT(largest(sum(denseOf(file.H.at(0)), dense(H), -1)), 1e-8) << type;
      EXPECT_LT(numberBehind(run.console, " Final Fit:   Maximum"), 2.0);
    }
  }
}

// At zero frequency: gamma = sqrt(G R), Yc = gamma^-1 G, H = exp(-l gamma). The wires couple by
// 2e-8 of their own resistance, which is below what the eigen package tells apart.
TEST(PhaseModel, DcValuesAreThoseOfTheResistances) {
  static RealMatrix Y, H;
  solveBothLoops(doubleCircuit(phaseModel()), 1e5);
  DCVALUES(Y, H);
  const Dense G = corner(SOLVEDATA.first.YMAT, 6), R = corner(SOLVEDATA.first.ZMAT, 6);
  const Dense gamma = squareRoot(product(G, R));
  EXPECT_LT(distance(dense(Y), product(inverse(gamma), G)), 2e-8);
  EXPECT_LT(largest(sum(dense(H), exponential(times(-1e5L, gamma)), -1)), 2e-8);
}

// One value that is no number in what is fitted.
TEST(PhaseModel, FitsWithoutFiniteNumbersAreRefused) {
  solveBothLoops(singleCircuit(phaseModel(EVENWEIGHTS)));
  formFitWeights();
  SecondLoopStore& T = SOLVEDATA.second;
  const double none = std::nan("");
  const std::pair<const char*, std::function<void()>> cases[] = {
      {"Characteristic Admittance", [&] { T.YCST(9, 1, 2) = none, FITDRIVE(); }},
      {"Propagation Function", [&] { T.HST(9, 1, 2) = none, FITDRIVE(); }},
      {"Mode", [&] { T.ZSURGST(9, 1) = none, fitSurgeImpedance(1); }},
  };
  for (const auto& [what, fit] : cases) {
    const ChildResult child = runChild(fit);
    EXPECT_EQ(child.status, 1) << what;
    const std::string words =
        fmt::format("Fit of {}{} gives no Finite Numbers!\n", what[0] == 'M' ? "a " : "the ", what);
    EXPECT_NE(child.console.find(words), std::string::npos) << child.console;
  }
}

TEST(PhaseModel, AManualFileReplacesTheModelFile) {
  const Scratch scratch;
  scratch.file("a.cvi", description(singleCircuit(phaseModel(EVENWEIGHTS)) +
                                    "Output File Display Options\n{\nManual Output File : 1\n"
                                    "Man. Output File Name : manual.cvo\n}\n"));
  const auto run = [&] { return runProgram({"/file", "a.cvi", "/length", "1e5"}, scratch.path()); };
  const ProgramRun missing = run();
  EXPECT_NE(missing.console.find("Cannot Open Output file ! ******manual.cvo\n"),
            std::string::npos);
  EXPECT_EQ(missing.files.count("a.out"), 0U);
  scratch.file("manual.cvo", "short\n" + std::string(150, 'x') + "\n");
  const ProgramRun copied = run();
  EXPECT_EQ(copied.files.at("a.cvo"), fmt::format("{:<99}\n{}\n", "short", std::string(99, 'x')));
  EXPECT_EQ(copied.files.count("a.out"), 1U);
}

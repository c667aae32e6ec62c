// Model files of runs read back and compared with the line and with the printed errors.
#include "fit/dc_values.h"
#include "fit/fit_driver.h"
#include "fit/mode_model.h"
#include "fit/series_fit.h"
#include "kernels/matrix_kernels.h"
#include "modal/second_loop.h"
#include "output/mfdtd_model_file.h"
#include "output/model_file.h"
#include "output/report_sections.h"
#include "store/rundata.h"
#include "store/solvedata.h"
#include "support/child.h"
#include "support/description.h"
#include "support/scratch.h"
#include "support/solve.h"
#include "support/whole_run.h"
#include "support/written_model.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <sstream>

using namespace lcp;
using namespace lcp::test;

namespace {

constexpr double ANGULAR60 = 376.99111843077515; // rad/s

std::vector<std::string> modelFileOf(const std::string& body, const std::string& length) {
  return splitLines(runLine(body, length).files.at("a.cvo"));
}

// The branches of a PI file as matrices; shunt branches of one end.
PiCircuit circuitOf(const companions::PiFile& pi, double w) {
  PiCircuit circuit{sum(denseOf(pi.R), denseOf(pi.L), Wide(0, w)), denseOf(pi.R)};
  circuit.Y = times(0, circuit.Y);
  for (std::size_t i = 0; i < pi.R.rows; ++i) {
    for (std::size_t j = 0; j <= i; ++j)
      join(circuit.Y, i + 1, i == j ? 0 : j + 1, Wide(0, 1e-6 * w) * Wide(pi.shuntC(i, j)));
  }
  return circuit;
}

Dense susceptance(const Dense& A) {
  return formed(A.size(), [&](std::size_t i, std::size_t j) { return A[i][j].imag(); });
}

constexpr double LENGTH = 1e5; // m
struct ModeRun {
  std::string console;
  ModelFile file;
};

ModeRun runModes(const std::string& body) {
  solveBothLoops(body, LENGTH);
  const ProgramRun run = runLine(body, fmt::format("{}", LENGTH));
  return {run.console, readModel(run.files.at("a.cvo"))};
}

// The error and the count printed after the title belong to the function without its delay.
void expectFit(const ModeRun& run, const std::string& title, const companions::Rational& f,
               double delay, const Curve<Complex, MAXFREQ>& F) {
  double deviation = 0, peak = 0, error = -1;
  std::size_t count = 0;
  for (int k = 1; k < SOLVEDATA.grid.NFREQ; ++k) {
    const Complex s(0, SOLVEDATA.grid.WFREQ[k]);
    deviation = std::max(deviation, std::abs(f.at(s)(0, 0) * std::exp(-s * delay) - F[k]));
    peak = std::max(peak, std::abs(F[k]));
  }
  const std::size_t at = run.console.find(title);
  ASSERT_NE(at, std::string::npos) << title;
  std::istringstream(run.console.substr(at + title.size())) >> error >> count;
  EXPECT_NEAR(deviation / peak, error, 1e-9) << title;
  EXPECT_EQ(f.poles.size(), count) << title;
}

void expectModes(const ModeRun& run) {
  for (int m = 1; m <= RUNDATA.line.NC; ++m) {
    const companions::ModeFit& mode = run.file.modes[static_cast<std::size_t>(m) - 1];
    expectFit(run, fmt::format("Mode {:2} Surge Impedance:", m), mode.Zc, 0,
              SOLVEDATA.second.ZSURGST.curve(m));
    expectFit(run, fmt::format("Mode {:2} Attenuation Constant:", m), mode.A, 1e-3 * mode.delay,
              SOLVEDATA.second.HMODE.curve(m));
    // all modes travel at about the speed of light, especially with the loss removed
    EXPECT_NEAR(1e-3 * mode.delay, LENGTH / 2.99792458e8, 1e-4 * mode.delay);
  }
}

// The number at the start of the third line after the last occurrence of the words.
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

TEST(ModelFile, ThePiFileIsTheExactPiCircuit) {
  const std::string model = "PI Model Options\n{\n}\n";
  for (const std::string& body : {singleCircuit(model), doubleCircuit(model)}) {
    solveFirstLoop(body, 8e4);
    const int n = RUNDATA.line.NC;
    const PiCircuit pi =
        circuitOf(readModel(runLine(body, "80000").files.at("a.cvo")).pi, ANGULAR60);
    const PiCircuit exact =
        exactPi(corner(SOLVEDATA.first.YMAT, n), corner(SOLVEDATA.first.ZMAT, n), 8e4L);
    EXPECT_LT(distance(pi.Z, exact.Z), 1e-7);
    // the file contains couplings as capacitances, without their small negative conductance
    EXPECT_LT(distance(susceptance(pi.Y), susceptance(times(0.5L, exact.Y))), 1e-7);
  }
}

TEST(ModelFile, BergeronModesAreThoseOfTheLine) {
  const std::string body = doubleCircuit(bergeronModel("Frequency for Loss Approximation: 3000\n"));
  const companions::BergeronFile file =
      readModel(runLine(body, "50000").files.at("a.cvo")).bergeron;
  EXPECT_EQ(std::tuple(file.SSFREQ, file.FLOSS, file.length), std::tuple(60, 3000, 5e4));
  solveBothLoops(body, 5e4);
  const SecondLoopStore& T = SOLVEDATA.second;
  const Dense TI = denseOf(file.TI);
  for (int m = 1; m <= 6; ++m) {
    const companions::BergeronMode& mode = file.modes[static_cast<std::size_t>(m) - 1];
    // travel time and surge impedance from the propagation constant at 60 Hz
    EXPECT_NEAR(mode.T, 1e3 * 5e4 * T.GAM[m].imag() / ANGULAR60, 1e-12);
    EXPECT_NEAR(mode.Zc, T.ZSURGE[m].real(), 1e-9);
    EXPECT_GT(mode.Rloss, mode.R); // more at 3000 Hz than at 60 Hz
    long double square = 0;
    for (const auto& row : TI) square += std::norm(row[static_cast<std::size_t>(m) - 1]);
    EXPECT_NEAR(static_cast<double>(square), 1.0, 1e-12);
  }
  const ChildResult noted = runChild([] { // by magnitude in the file; rounding gets no note
    dup2(STDOUT_FILENO, STDERR_FILENO);
    SOLVEDATA.second.RLOSS1.fill(1e-4);
    SOLVEDATA.second.RLOSS2.fill(1e-4);
    SOLVEDATA.second.RLOSS1[2] = -2.0 / 3;
    SOLVEDATA.second.RLOSS2[1] = -1e-18;
    TextFile text;
    writeBergeronModel(text);
  });
  EXPECT_EQ(noted.console,
            "corvo: note: mode 2 has a negative resistance of -0.6667 at 3000 Hz; the model "
            "file has 0.6667\n");
}

TEST(ModelFile, LongRowsGoOnInANewLine) {
  const auto pi = modelFileOf(manyCircuits(30, "PI Model Options\n{\n}\n"), "1000");
  // five rows of more than 25 pairs, each two lines; the last holds 25 and 5 pairs
  EXPECT_EQ(pi.back().size(), 5U * 38);
  EXPECT_TRUE(pi.back().starts_with("     "));
  EXPECT_EQ(pi[pi.size() - 2].size(), 20U + 25 * 38);
  for (const auto& [n, perMode, wide] :
       {std::tuple{35U, 1U, false}, {36, 1, true}, {40, 2, true}}) {
    const auto file = modelFileOf(manyCircuits(static_cast<int>(n), bergeronModel()), "1000");
    ASSERT_EQ(file.size(), 6U + n * perMode) << n;
    EXPECT_EQ(file[6].ends_with(" /"), wide) << n;
    EXPECT_EQ(perMode == 2 ? file[7].size() : 100U, 100U);
  }
}

// Without an error target the numbers of poles reach the limits.
TEST(ModeModelFile, FunctionsAreTheModesOfTheLine) {
  const std::string limits = "Maximum Fitting Error (%) for Surge Impedance: 0\n"
                             "Maximum Fitting Error (%) for Attenuation Constant: 0\n"
                             "Maximum # of Poles for Surge Impedance Fit: {0}\n"
                             "Maximum # of Poles for Attenuation Constant Fit: {0}\n";
  expectModes(runModes(doubleCircuit(modeModel())));
  for (const std::size_t count : {1U, 6U, 7U, 13U}) {
    const std::string model = modeModel(fmt::format(fmt::runtime(limits), count));
    const ModeRun run = runModes(singleCircuit(model, count == 6 ? "Transposed: 1\n" : ""));
    expectModes(run);
    for (const companions::ModeFit& mode : run.file.modes) EXPECT_EQ(mode.Zc.poles.size(), count);
  }
}

TEST(ModeModelFile, TransformationIsThatOfItsStep) {
  const ModeRun run =
      runModes(doubleCircuit(modeModel("Frequency to Calculate Constant Transform: 5000\n")));
  const int last = SOLVEDATA.grid.NFREQ;
  EXPECT_NEAR(SOLVEDATA.grid.FREQ[last], 5000, 1e-9);
  for (int e = 0; e < 36; ++e) {
    const auto F = SOLVEDATA.second.TIST.curve(e / 6 + 1, e % 6 + 1);
    const companions::Rational& f =
        run.file.modes[static_cast<std::size_t>(e / 6)].row[static_cast<std::size_t>(e % 6)];
    double mean = 0; // its sign is that of the real parts
    for (int k = 1; k <= last; ++k) mean += F[k].real();
    EXPECT_TRUE(f.poles.empty());
    EXPECT_NEAR(f.at(0)(0, 0).real(), std::copysign(std::abs(F[last]), mean), 1e-11) << e;
  }
}

TEST(MfdtdModelFile, TheFileIsTheLineToThePrintedError) {
  const std::string keys =
      "MFDTD Model Options\n{\n" + EVENWEIGHTS + "Maximum Fitting Error (%) for Series Impedance: ";
  for (const auto& [body, target] : {std::pair{singleCircuit(keys + "2\n}\n"), 2.0},
                                     {doubleCircuit(keys + "0.01\n}\n"), 0.01}}) {
    const ProgramRun run = runLine(body, "25000");
    const ModelFile file = readModel(run.files.at("a.cvo"));
    solveFirstLoop(body, 25000);
    double e = 0, z = 0;
    for (int k = 1; k < SOLVEDATA.grid.NFREQ; ++k) {
      const Dense Z = stepOf(SOLVEDATA.at.ZSTORE, k);
      const Complex s(0, SOLVEDATA.grid.WFREQ[k]);
      e = std::max(e, largest(sum(denseOf(file.Z.at(s)), Z, -1)));
      z = std::max(z, largest(Z));
    }
    const Dense Y = stepOf(SOLVEDATA.at.YSTORE, 10);
    const Wide s(0, SOLVEDATA.grid.WFREQ[10]);
    EXPECT_LT(distance(sum(denseOf(file.G), denseOf(file.C), s), Y), 1e-13);
    const double printed = std::stod(run.console.substr(run.console.find(" Actual: ") + 9));
    EXPECT_NEAR(100 * e / z, printed, 6e-5);
    EXPECT_LE(printed, target);
    EXPECT_EQ(file.Z.poles.size() == 1, target == 2.0);
    EXPECT_EQ(file.length, 25000);
  }
}

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
// 2e-8 of their own resistance, which is below the resolution of the eigen package.
TEST(PhaseModel, DcValuesAreThoseOfTheResistances) {
  static RealMatrix Y, H;
  solveBothLoops(doubleCircuit(phaseModel()), 1e5);
  DCVALUES(Y, H);
  const Dense G = corner(SOLVEDATA.first.YMAT, 6), R = corner(SOLVEDATA.first.ZMAT, 6);
  const Dense gamma = squareRoot(product(G, R));
  EXPECT_LT(distance(dense(Y), product(inverse(gamma), G)), 2e-8);
  EXPECT_LT(largest(sum(dense(H), exponential(times(-1e5L, gamma)), -1)), 2e-8);
}

// One value of the fitted functions is not finite.
TEST(PhaseModel, FitsWithoutFiniteNumbersAreRefused) {
  solveBothLoops(singleCircuit(phaseModel(EVENWEIGHTS)));
  formFitWeights();
  SecondLoopStore& T = SOLVEDATA.second;
  const double none = std::nan("");
  const std::pair<const char*, std::function<void()>> cases[] = {
      {"Characteristic Admittance", [&] { T.YCST(9, 1, 2) = none, fitAdmittance(); }},
      {"Propagation Function", [&] { T.HST(9, 1, 2) = none, fitPropagation(); }},
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

// A record of a report holds 25 elements.
TEST(Report, LongRowsGoOnInANewRecord) {
  RUNDATA.resetInput();
  for (const int n : {25, 26, 49}) {
    static LineMatrix Y, Z;
    RUNDATA.line.NC = n;
    clear(Y, n);
    clear(Z, n);
    for (int j = 1; j <= n; ++j) Z(1, j) = j;
    const Scratch scratch;
    TextFile file;
    ASSERT_TRUE(file.open(scratch.file("report"), EarlyEnd::REMOVE));
    writePhaseDomain(file, Y, Z);
    file.close();
    const auto rows = splitLines(contentOf(scratch.file("report")));
    const auto first = std::find_if(rows.begin(), rows.end(), [](const std::string& row) {
      return row.find(',') < row.size();
    });
    EXPECT_EQ(first[0].size(), 1 + 25 * 34);
    EXPECT_EQ(first[1].size(), n == 25 ? 1 + 25 * 34 : (n - 25) * 34) << n;
    EXPECT_EQ(first[1].starts_with("   0.260000000E+02,0.000000000E+00"), n > 25);
  }
}

TEST(Report, TheMinimumDelayIsInMilliseconds) {
  for (const auto& [milliseconds, shown] :
       {std::pair{false, " 0.200000000"}, {true, " 0.000200000"}}) {
    const Scratch scratch;
    TextFile file;
    ASSERT_TRUE(file.open(scratch.file("report"), EarlyEnd::REMOVE));
    MINDELAY(file, std::array{3e-4, 2e-4}, milliseconds);
    file.close();
    EXPECT_NE(contentOf(scratch.file("report")).find(shown), std::string::npos);
  }
}

TEST(Report, PartsBelowTheToleranceAreZeroInAllMatrices) {
  const std::string display =
      "Output File Display Options\n{\nZero Tolerance for Display : 1e9\n}\n";
  const auto rows = splitLines(
      runLine(singleCircuit(bergeronModel(), "ShuntConductance: 1e-11\n") + display, "1e5")
          .files.at("a.out"));
  int matrices = 0;
  for (std::size_t k = 0; k + 1 < rows.size(); ++k) {
    if (rows[k].find(" MATRIX ") == std::string::npos || rows[k].starts_with(" SEQUENCE T"))
      continue;
    ++matrices;
    EXPECT_EQ(rows[k + 1].find_first_of("123456789"), std::string::npos) << rows[k];
  }
  EXPECT_EQ(matrices, 9);
}

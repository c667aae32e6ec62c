// Detail curve files read back: sampled values against the line, fitted ones against the model,
// both formed here.
#include "output/curve_files.h"

#include "base/constants.h"
#include "fit/mode_model.h"
#include "modal/second_loop.h"
#include "store/fitmodel.h"
#include "store/rundata.h"
#include "support/child.h"
#include "support/console_capture.h"
#include "support/description.h"
#include "support/phase_file.h"
#include "support/scratch.h"
#include "support/solve.h"
#include "support/whole_run.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sstream>
#include <sys/file.h>

using namespace lcp;
using namespace lcp::test;

namespace {

constexpr double LENGTH = 1e5; // m
const std::string KEYS = EVENWEIGHTS + "Write Detailed Output Files: 1\n";

using Files = std::map<std::string, std::string>;
using Rows = std::vector<std::vector<double>>; // log f, f, values

const std::string& textOf(const Files& files, const std::string& curve) {
  return files.at("x_" + curve + ".out");
}

// A line of other length than whole values have goes on with the row before it.
Rows rowsOf(const Files& files, const std::string& curve) {
  Rows rows;
  std::istringstream in(textOf(files, curve));
  std::string line;
  for (std::getline(in, line); std::getline(in, line);) {
    if (rows.empty() || line.size() % 19 == 16) rows.emplace_back();
    std::istringstream values(line);
    rows.back().insert(rows.back().end(), std::istream_iterator<double>(values), {});
  }
  return rows;
}

// What a child that has this process's stores writes.
Files written(const std::function<void()>& code, const std::string& console = "") {
  const Scratch scratch;
  RUNDATA.line.LNAME = "x";
  const ChildResult child = runChild([&] {
    std::filesystem::current_path(scratch.path());
    code();
  });
  EXPECT_EQ(child.status, 0);
  EXPECT_EQ(child.console, console);
  Files files;
  for (const auto& entry : std::filesystem::directory_iterator(scratch.path()))
    files[entry.path().filename().string()] = contentOf(entry.path());
  return files;
}

// Poles that lie close together cancel: a sum is good to the rounding of its terms.
struct Sum {
  Complex value;
  double terms = 0; // their magnitudes
};
using Value = std::function<Sum(int step, int element)>;

void expectNear(Complex a, Sum b, const std::string& what, double tolerance = 1.2e-7) {
  EXPECT_LE(std::abs(a - b.value), tolerance * std::abs(b.value) + 1e-15 * b.terms + 1e-14)
      << what << a << b.value;
}

Complex polar(double size, double angle) {
  return size * Complex(std::cos(angle / DEGREES), std::sin(angle / DEGREES)); // size < 0 too
}

// A file of magnitudes and one of angles: at the 101 steps of the fit range each of the elements by
// all functions (the sampled one, the fitted one).
void expectCurves(const Files& files, const std::string& a, const std::string& b, int elements,
                  const std::vector<Value>& functions) {
  const Rows sizes = rowsOf(files, a), angles = rowsOf(files, b);
  const std::size_t stride = functions.size(), n = static_cast<std::size_t>(elements) * stride;
  ASSERT_EQ(sizes.size(), 101U) << a;
  for (int k = 6; k <= 106; ++k) {
    const auto &size = sizes[static_cast<std::size_t>(k - 6)],
               &angle = angles.at(static_cast<std::size_t>(k - 6));
    ASSERT_EQ(size.size(), 2 + n) << a;
    ASSERT_NEAR(size[1], SOLVEDATA.grid.FREQ[k], 1e-7 * size[1]);
    ASSERT_NEAR(angle.at(0), SOLVEDATA.grid.LOGF[k], 1e-7);
    for (std::size_t c = 0; c < n; ++c) {
      const Sum value = functions[c % stride](k, static_cast<int>(c / stride));
      expectNear(polar(size[2 + c], angle.at(2 + c)), value, a);
    }
  }
}

using Elements = CurveMatrix<Complex, MAXFREQ>;

Value valuesOf(const Elements& A) {
  const int n = RUNDATA.line.NC;
  return [&A, n](int k, int e) { return Sum{A(k, e / n + 1, e % n + 1)}; };
}

// Of a matrix of the model file at the step's frequency.
Value valuesOf(const PhaseFile& model, Dense (PhaseFile::*A)(Wide) const) {
  return [&model, A](int k, int e) {
    const auto n = static_cast<std::size_t>(RUNDATA.line.NC), at = static_cast<std::size_t>(e);
    return Sum{Complex((model.*A)(Wide(0, SOLVEDATA.grid.WFREQ[k]))[at / n][at % n])};
  };
}

Sum valueOf(const RationalFit& F, int k) {
  Sum sum{F.D};
  for (int m = 1; m <= F.N; ++m) {
    const Complex term = F.R[m] / (Complex(0, SOLVEDATA.grid.WFREQ[k]) - F.P[m]);
    sum.value += term;
    sum.terms += std::abs(term);
  }
  return sum;
}

// Solves a line of three wires and fits its modes, with a constant transformation or a fitted one.
void solveModes(bool constant) {
  SOLVEDATA.second.TISUM = {};
  solveBothLoops(
      singleCircuit(modeModel("Write Detailed Output Files: 1\n"), "ShuntConductance: 1e-11\n"),
      LENGTH);
  formFitWeights();
  RUNDATA.fit.CONSTT = constant;
  consoleOf([] {
    for (int i = 1; i <= 3; ++i) {
      fitSurgeImpedance(i);
      fitAttenuation(i);
      for (int r = 1; r <= 3; ++r) fitTransformElement(i, r);
    }
  });
}

} // namespace

TEST(CurveFiles, OfThePhaseModelAreTheLineAndItsModelFile) {
  const std::string dc = "DC Correction Type: 1\nMaximum Residue/Pole Ratio Tolerance: 0.5\n";
  const std::string circuit = "ShuntConductance: 1e-11\nTransposed: 1\n";
  for (const std::string& body :
       {doubleCircuit(phaseModel(KEYS + dc)), singleCircuit(phaseModel(KEYS), circuit)}) {
    solveBothLoops(body, LENGTH);
    const Files files = runLine("Line Summary\n{\nLine Name: x\n}\n" + body, "1e5").files;
    const PhaseFile model = readPhaseFile(files.at("a.cvo"));
    ASSERT_EQ(model.trouble, "");
    const FrequencyStore& A = SOLVEDATA.at;
    const SecondLoopStore& T = SOLVEDATA.second;
    const int n = RUNDATA.line.NC, all = n * n;
    const Elements& TI = SOLVEDATA.first.IDEALT ? T.TIST : A.MTI;
    expectCurves(files, "zm", "zp", all, {valuesOf(A.ZSTORE)});
    expectCurves(files, "ym", "yp", all, {valuesOf(A.YSTORE)});
    expectCurves(files, "timp", "tipp", all, {valuesOf(TI)});
    expectCurves(files, "lamdam", "lamdap", n,
                 {[&](int k, int e) { return Sum{A.MEIG(k, e + 1)}; }});
    expectCurves(files, "ycmp", "ycpp", all, {valuesOf(T.YCST), valuesOf(model, &PhaseFile::Yc)});
    expectCurves(files, "hmp", "hpp", all, {valuesOf(T.HST), valuesOf(model, &PhaseFile::H)});
  }
}

TEST(CurveFiles, OfTheModeModelAreItsModes) {
  for (const bool constant : {true, false}) {
    solveModes(constant);
    const SecondLoopStore& T = SOLVEDATA.second;
    const Files files = written([] { headCurves(), writeModeCurves(); });
    const auto undelayed = [&](int k, int e) {
      const double turn = SOLVEDATA.grid.WFREQ[k] * 1e-3 * T.TAUMS[e + 1];
      return Sum{T.HMODE(k, e + 1) * std::polar(1.0, turn)};
    };
    const auto transform = [&](int k, int e) {
      return constant ? Sum{T.TIST(SOLVEDATA.grid.NFREQ, e / 3 + 1, e % 3 + 1)}
                      : valueOf(MODEMODEL.T(e / 3 + 1, e % 3 + 1), k);
    };
    expectCurves(files, "zcmm", "zcpm", 3,
                 {[&](int k, int e) { return Sum{T.ZSURGST(k, e + 1)}; },
                  [](int k, int e) { return valueOf(MODEMODEL.Z[e + 1], k); }});
    expectCurves(files, "amm", "apm", 3,
                 {undelayed, [](int k, int e) { return valueOf(MODEMODEL.A[e + 1], k); }});
    expectCurves(files, "timm", "tipm", 9, {valuesOf(T.TIST), transform});
    for (const std::vector<double>& row : rowsOf(files, "apm"))
      EXPECT_TRUE(*std::max_element(row.begin() + 2, row.end()) <= 0 &&
                  *std::min_element(row.begin() + 2, row.end()) > -360);
    for (const std::vector<double>& row : rowsOf(files, "timm")) {
      for (std::size_t e = 0; e < 9; ++e)
        EXPECT_EQ(row[2 + 2 * e] >= 0, T.TISUM(static_cast<int>(e) / 3 + 1, static_cast<int>(e) % 3 + 1) > 0) << e;
    }
  }
}

// The ends of the line against its exact pi circuit, where the far end is shorted and open.
TEST(CurveFiles, OfTheEndsAreThoseOfTheExactLine) {
  solveModes(true);
  const Files files = written([] { headCurves(), writeEndCurves(), writeModeCurves(); });
  const Rows z = rowsOf(files, "zs"), y = rowsOf(files, "ys");
  ASSERT_EQ(rowsOf(files, "gdis").size(), 101U);
  for (std::size_t row = 0; row < 101; row += 6) {
    const auto expectEnd = [&](const char* curve, int i, Sum value, double tolerance = 1.2e-7) {
      const std::size_t c = 2 * static_cast<std::size_t>(i);
      const std::vector<double> values = rowsOf(files, curve).at(row);
      EXPECT_TRUE(values.at(c + 1) > -90.0001 && values[c + 1] <= 270) << values[c + 1];
      expectNear(polar(values[c], values[c + 1]), value, curve, tolerance);
    };
    const int k = static_cast<int>(row) + 6;
    static LineMatrix Y, Z;
    SOLVEDATA.at.YSTORE.load(k, Y, 3);
    SOLVEDATA.at.ZSTORE.load(k, Z, 3);
    for (int i = 1, c = 2; i <= 3; ++i) {
      for (int j = i; j <= 3; ++j, c += 2) {
        const auto at = static_cast<std::size_t>(c);
        expectNear({z[row].at(at), z[row].at(at + 1)}, {Z(i, j)}, "Z");
        expectNear({y[row].at(at), y[row].at(at + 1)}, {Y(i, j)}, "Y");
      }
      const Complex Zs = SOLVEDATA.second.ZSURGST(k, i), u = SOLVEDATA.second.GAMLEN(k, i);
      expectEnd("short", i, {Zs * std::tanh(u)});
      expectEnd("open", i, {Zs / std::tanh(u)});
    }
    if (row > 60) continue; // beyond the exact circuit has lost its digits
    const PiCircuit pi = exactPi(corner(Y, 3), corner(Z, 3), LENGTH);
    const Dense half = times(0.5L, pi.Y), shorted = inverse(sum(half, inverse(pi.Z)));
    const Dense open = inverse(sum(half, inverse(sum(pi.Z, inverse(half)))));
    for (int j = 1; j <= 3; ++j) {
      const auto c = static_cast<std::size_t>(j - 1);
      expectEnd("gdis", j, {Complex(3.0L * shorted[c][0])}, 1e-6);
      expectEnd("gdio", j, {Complex(3.0L * open[c][0])}, 1e-6);
    }
  }
}

// How many files there are, the rows of one, and the values on the lines of a row.
TEST(CurveFiles, FilesStepsAndRowsByModelAndRoute) {
  solveBothLoops(singleCircuit(phaseModel(KEYS)), LENGTH);
  const struct {
    char model;
    int route, NFUSE, n;
    std::size_t count;
    const char* file;
    std::size_t rows;
    std::vector<std::size_t> values = {};
    int kind = OVERHEADLINE;
  } cases[] = {
      {'p', ROUTECONSTANTS, 106, 3, 20, "zm", 101, {11}},
      {'p', ROUTECONSTANTS, 5, 4, 14, "timp", 0},
      {'p', ROUTEMULTIPLE, 100, 3, 20, "ycmp", 95, {20}},
      {'p', ROUTEMULTIPLE, 99, 3, 20, "ycmp", 99, {20}},
      {'p', ROUTEMULTIPLE, 99, 3, 20, "hmp", 94, {20}},
      {'p', ROUTEMULTIPLE, 98, 3, 20, "hpp", 98, {20}},
      {'p', ROUTECONSTANTS, 6, 21, 14, "hpp", 6, {403, 403, 78}},
      {'f', ROUTEMULTIPLE, 99, 3, 10, "zpf", 99, {11}},
      {'f', ROUTEMULTIPLE, 99, 3, 10, "zp", 94, {11}},
      {'m', ROUTEMULTIPLE, 7, 2, 16, "zs", 2, {8}},
      {'m', ROUTEMULTIPLE, 5, 3, 12, "amm", 0, {}, CABLESYSTEM},
  };
  for (const auto& c : cases) {
    const Files files = written([&] {
      RUNDATA.model = ModelChoice{};
      RUNDATA.model.MODFDM = c.model == 'm';
      RUNDATA.model.MODFDP = c.model == 'p';
      RUNDATA.model.MODMFDTD = c.model == 'f';
      RUNDATA.line.NC = c.n;
      RUNDATA.run.ISCABLE = c.kind;
      RUNDATA.run.DATAFMT = c.route;
      SOLVEDATA.grid.NFUSE = c.NFUSE;
      headCurves(), writeEndCurves(), writePhaseLineCurves(), writePhaseFitCurves();
      writeSeriesFitCurves(SOLVEDATA.at.ZSTORE), writeSeriesLineCurves(), writeModeCurves();
    });
    std::vector<std::string> texts = splitLines(textOf(files, c.file));
    EXPECT_EQ(files.size(), c.count) << c.file << c.NFUSE;
    ASSERT_EQ(texts.size(), 1 + c.rows * c.values.size()) << c.file << c.NFUSE;
    for (std::size_t i = 1; i < texts.size(); ++i)
      EXPECT_EQ((texts[i].size() + 3) / 19, c.values[(i - 1) % c.values.size()]) << c.file;
    if (c.rows > 0)
      expectNear(rowsOf(files, c.file).back().at(1), {SOLVEDATA.grid.FREQ[c.NFUSE]}, c.file);
  }
}

TEST(CurveFiles, HalfTurnsArePositiveAndNoNumbersStayOut) {
  solveBothLoops(singleCircuit(phaseModel(KEYS)), LENGTH);
  const Files files = written(
      [] {
        SOLVEDATA.grid.NFUSE = 6;
        SOLVEDATA.at.ZSTORE(6, 1, 2) = {-1.0, -0.0};
        SOLVEDATA.at.YSTORE(6, 3, 3) = std::nan("");
        headCurves(), writePhaseLineCurves();
      },
      lines({"Values that are no Finite Numbers in Detail Curve File: x_ym.out",
             "Values that are no Finite Numbers in Detail Curve File: x_yp.out"}));
  EXPECT_EQ(rowsOf(files, "zp").at(0).at(3), 180);
  EXPECT_TRUE(rowsOf(files, "ym").empty());
}

// Trouble is told and changes nothing else. Names stay in the directory.
TEST(CurveFiles, TroubleIsToldAndTheRunGoesOn) {
  ProgramRun runs[2];
  for (const std::size_t detail : {0U, 1U}) {
    const Scratch scratch;
    const std::string body = singleCircuit(phaseModel(detail == 1 ? KEYS : EVENWEIGHTS));
    scratch.file("a.cvi", description("Line Summary\n{\nLine Name: '../a/b'\n}\n" + body));
    std::filesystem::create_directory(scratch.file(".._a_b_zm.out"));
    std::filesystem::create_symlink("/dev/full", scratch.file(".._a_b_hmp.out"));
    std::filesystem::create_symlink("missing/x", scratch.file(".._a_b_gdio.out"));
    const int other = open(scratch.file(".._a_b_yp.out").c_str(), O_CREAT | O_RDONLY, 0600);
    EXPECT_EQ(flock(other, LOCK_EX), 0); // as another run in the folder has it
    runs[detail] = runProgram({"/file", "a.cvi", "/length", "1e5"}, scratch.path());
    close(other);
  }
  std::string told, others;
  for (const std::string& line : splitLines(runs[1].console))
    (line.find("Curve File") == std::string::npos ? others : told) += line + "\n";
  EXPECT_EQ(told, lines({"Cannot Open Detail Curve File: .._a_b_zm.out",
                         "Cannot Open Detail Curve File: .._a_b_yp.out",
                         "Cannot Open Detail Curve File: .._a_b_gdio.out",
                         "Error in Writing Detail Curve File: .._a_b_hmp.out"}));
  EXPECT_EQ(others, runs[0].console);
  EXPECT_EQ(runs[1].status, 0);
  EXPECT_EQ(runs[1].files.size(), 2U + 16U);
  for (const auto& [file, text] : runs[0].files) EXPECT_EQ(runs[1].files.at(file), text);
}

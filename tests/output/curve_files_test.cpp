// Detail curve files read back by columns: sampled values against the line, fitted ones against the
// model, both formed here.
#include "output/curve_files.h"

#include "base/constants.h"
#include "fit/mode_model.h"
#include "modal/second_loop.h"
#include "store/fitmodel.h"
#include "store/rundata.h"
#include "support/child.h"
#include "support/console_capture.h"
#include "support/dense_functions.h"
#include "support/description.h"
#include "support/phase_file.h"
#include "support/scratch.h"
#include "support/solve.h"
#include "support/whole_run.h"

#include <fmt/format.h>
#include <functional>
#include <gtest/gtest.h>
#include <sstream>
#include <unistd.h>

using namespace lcp;
using namespace lcp::test;

namespace {

constexpr double LENGTH = 1e5; // m
const std::string WEIGHTS = "Weighting Factor 1: 1\nWeighting Factor 2: 1\nWeighting Factor 3: 1\n";
const std::string KEYS = WEIGHTS + "Write Detailed Output Files: 1\n";

std::string modeModel() { return "Frequency Dep. (Mode) Model Options\n{\n" + KEYS + "}\n"; }

struct CurveText {
  std::vector<std::vector<double>> rows;
  std::vector<std::size_t> perLine; // values on each line
};

CurveText readCurve(const std::string& text) {
  CurveText curve;
  std::istringstream in(text);
  std::string line;
  std::getline(in, line); // the header
  while (std::getline(in, line)) {
    std::size_t at = line.size() % 19;
    EXPECT_TRUE(at == 0 || at == 16) << line;
    if (at == 16) curve.rows.push_back({std::stod(line.substr(0, 16))});
    for (; at < line.size(); at += 19) {
      EXPECT_EQ(line.substr(at, 3), "   ");
      curve.rows.back().push_back(std::stod(line.substr(at + 3, 16)));
    }
    curve.perLine.push_back((line.size() + 3) / 19);
  }
  return curve;
}

using Files = std::map<std::string, CurveText>; // by suffix

// A pair of files, of magnitudes and of angles, as complex numbers.
struct PolarCurve {
  CurveText size, angle;

  PolarCurve(const Files& files, const std::string& a, const std::string& b)
      : size(files.at(a)), angle(files.at(b)) {}
  Complex operator()(std::size_t row, std::size_t column) const {
    const double turned = angle.rows.at(row).at(column) / DEGREES;
    return size.rows.at(row).at(column) * Complex(std::cos(turned), std::sin(turned));
  }
};

void expectNear(Complex a, Complex b, const std::string& what, double tolerance = 1.2e-7) {
  EXPECT_LE(std::abs(a - b), tolerance * std::abs(b) + 1e-14) << what << a << b;
}

int rowStep(std::size_t row) { return static_cast<int>(row) + 6; }

// Every stride-th value from an offset behind the frequency on, at the 101 steps of the fit range.
void expectColumns(const PolarCurve& curve, std::size_t offset, std::size_t stride, int count,
                   const std::string& what, const std::function<Complex(int, int)>& value) {
  ASSERT_EQ(curve.size.rows.size(), 101U) << what;
  EXPECT_EQ(curve.size.rows[0].size(), 2 + stride * static_cast<std::size_t>(count)) << what;
  for (std::size_t row = 0; row < 101; ++row) {
    const int k = rowStep(row);
    ASSERT_NEAR(curve.size.rows[row][1], SOLVEDATA.grid.FREQ[k], 1e-7 * SOLVEDATA.grid.FREQ[k]);
    ASSERT_NEAR(curve.angle.rows[row][0], SOLVEDATA.grid.LOGF[k], 1e-7);
    for (int e = 0; e < count; ++e) {
      const std::size_t column = 2 + offset + stride * static_cast<std::size_t>(e);
      expectNear(curve(row, column), value(k, e), fmt::format("{} {} {}: ", what, k, e));
    }
  }
}

void expectElements(const PolarCurve& curve, std::size_t stride, const std::string& what,
                    const CurveMatrix<Complex, LDMAT, MAXFREQ>& A) {
  const int n = RUNDATA.line.NC;
  expectColumns(curve, 0, stride, n * n, what,
                [&](int k, int e) { return A(k, e / n + 1, e % n + 1); });
}

// The fitted elements beside them, of a model at s.
void expectFitted(const PolarCurve& curve, const std::string& what,
                  const std::function<Dense(Wide)>& A) {
  const int n = RUNDATA.line.NC;
  expectColumns(curve, 1, 2, n * n, what, [&](int k, int e) {
    const Dense at = A(Wide(0, SOLVEDATA.grid.WFREQ[k]));
    return Complex(at[static_cast<std::size_t>(e / n)][static_cast<std::size_t>(e % n)]);
  });
}

// The curve files that stand in a directory, of a line named x.
Files curvesIn(const Scratch& scratch) {
  Files files;
  for (const auto& entry : std::filesystem::directory_iterator(scratch.path())) {
    const std::string name = entry.path().filename().string();
    if (name.starts_with("x_"))
      files[name.substr(2, name.size() - 6)] = readCurve(contentOf(entry.path()));
  }
  return files;
}

// What a child that has this process's stores writes.
Files written(const std::function<void()>& code, const std::string& console = "") {
  const Scratch scratch;
  RUNDATA.line.LNAME = "x";
  const ChildResult child = runChild([&] {
    if (chdir(scratch.path().c_str()) == 0) code();
  });
  EXPECT_EQ(child.status, 0);
  EXPECT_EQ(child.console, console);
  return curvesIn(scratch);
}

void choose(char model, int n, int iscable = OVERHEADLINE) {
  RUNDATA.model = ModelChoice{};
  RUNDATA.model.MODFDM = model == 'm';
  RUNDATA.model.MODFDP = model == 'p';
  RUNDATA.model.MODMFDTD = model == 'f';
  RUNDATA.line.NC = n;
  RUNDATA.run.ISCABLE = iscable;
}

// Solves a line of three wires and fits its modes, with a constant transformation or a fitted one.
void solveModes(bool constant) {
  SOLVEDATA.second.TISUM = {};
  solveBothLoops(singleCircuit(modeModel(), "ShuntConductance: 1e-11\n"), LENGTH);
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

// With its delay each group's function is that of its modes, where these are all the same.
void expectGroups(const PolarCurve& groups, const PhaseFile& model) {
  for (std::size_t g = 0; g < model.delays.size(); ++g) {
    double deviation = 0, away[3] = {};
    for (std::size_t row = 0; row < 101; ++row) {
      const int k = rowStep(row);
      const double turn = SOLVEDATA.grid.WFREQ[k] * static_cast<double>(model.delays[g]);
      const Complex F = groups(row, 2 + 2 * g), lag = std::polar(1.0, -turn);
      deviation = std::max(deviation, std::abs(F - groups(row, 3 + 2 * g)));
      for (int i = 0; i < 3; ++i)
        away[i] = std::max(away[i], std::abs(F * lag - SOLVEDATA.second.HMODE(k, i + 1)));
    }
    EXPECT_LT(*std::min_element(away, away + 3), 1e-6) << g;
    EXPECT_TRUE(deviation > 1e-6 && deviation < 0.02) << g << " " << deviation;
  }
}

} // namespace

TEST(CurveFiles, OfThePhaseModelAreTheLineAndItsModelFile) {
  const std::string shunt = "ShuntConductance: 1e-11\n";
  const std::string dc = "DC Correction Type: 1\nMaximum Residue/Pole Ratio Tolerance: 0.5\n";
  for (const std::string& body :
       {singleCircuit(phaseModel(KEYS), shunt), doubleCircuit(phaseModel(KEYS + dc)),
        singleCircuit(phaseModel(KEYS), shunt + "Transposed: 1\n")}) {
    solveBothLoops(body, LENGTH);
    const Scratch scratch;
    scratch.file("a.cvi", description("Line Summary\n{\nLine Name: x\n}\n" + body));
    const ProgramRun run = runProgram({"/file", "a.cvi", "/length", "1e5"}, scratch.path());
    const Files files = curvesIn(scratch);
    const PhaseFile model = readPhaseFile(run.files.at("a.cvo"));
    ASSERT_EQ(model.trouble, "");
    const FrequencyStore& A = SOLVEDATA.at;
    const SecondLoopStore& T = SOLVEDATA.second;
    expectElements({files, "zm", "zp"}, 1, "Z", A.ZSTORE);
    expectElements({files, "ym", "yp"}, 1, "Y", A.YSTORE);
    expectElements({files, "timp", "tipp"}, 1, "TI", SOLVEDATA.first.IDEALT ? T.TIST : A.MTI);
    expectColumns({files, "lamdam", "lamdap"}, 0, 1, RUNDATA.line.NC, "lambda",
                  [&](int k, int e) { return A.MEIG(k, e + 1); });
    const PolarCurve Yc(files, "ycmp", "ycpp"), H(files, "hmp", "hpp");
    expectElements(Yc, 2, "Yc", T.YCST);
    expectElements(H, 2, "H", T.HST);
    expectFitted(Yc, "fitted Yc", [&](Wide s) { return model.Yc(s); });
    expectFitted(H, "fitted H", [&](Wide s) { return model.H(s); });
    if (SOLVEDATA.first.IDEALT) expectGroups({files, "hmm", "hpm"}, model);
  }
}

TEST(CurveFiles, OfTheModeModelAreItsModes) {
  for (const bool constant : {true, false}) {
    solveModes(constant);
    const SecondLoopStore& T = SOLVEDATA.second;
    const Files files = written([] { headCurves(), writeModeCurves(); });
    const auto fitted = [](const RationalFit& F, int k) {
      Complex sum = F.D;
      for (int m = 1; m <= F.N; ++m) sum += F.R[m] / (Complex(0, SOLVEDATA.grid.WFREQ[k]) - F.P[m]);
      return sum;
    };
    const PolarCurve Z(files, "zcmm", "zcpm"), A(files, "amm", "apm");
    const PolarCurve TI(files, "timm", "tipm");
    expectColumns(Z, 0, 2, 3, "Zc", [&](int k, int e) { return T.ZSURGST(k, e + 1); });
    expectColumns(Z, 1, 2, 3, "fit", [&](int k, int e) { return fitted(MODEMODEL.Z[e + 1], k); });
    expectColumns(A, 0, 2, 3, "A", [&](int k, int e) {
      const double turn = SOLVEDATA.grid.WFREQ[k] * 1e-3 * T.TAUMS[e + 1];
      return T.HMODE(k, e + 1) * Complex(std::cos(turn), std::sin(turn));
    });
    expectColumns(A, 1, 2, 3, "fit", [&](int k, int e) { return fitted(MODEMODEL.A[e + 1], k); });
    expectColumns(TI, 0, 2, 9, "TI", [&](int k, int e) { return T.TIST(k, e / 3 + 1, e % 3 + 1); });
    expectColumns(TI, 1, 2, 9, "fit", [&](int k, int e) {
      const int i = e / 3 + 1, j = e % 3 + 1;
      return constant ? T.TIST(SOLVEDATA.grid.NFREQ, i, j) : fitted(MODEMODEL.T(i, j), k);
    });
    for (std::size_t row = 0; row < 101; ++row) {
      for (std::size_t c = 2; c < 8; ++c)
        EXPECT_TRUE(A.angle.rows[row][c] <= 0 && A.angle.rows[row][c] > -360);
      for (std::size_t e = 0; e < 9; ++e) {
        const int i = static_cast<int>(e) / 3 + 1, j = static_cast<int>(e) % 3 + 1;
        EXPECT_EQ(TI.size.rows[row][2 + 2 * e] >= 0, T.TISUM(i, j) > 0) << i << j;
      }
    }
  }
}

// The ends of the line against its exact pi circuit, where the far end is shorted and open.
TEST(CurveFiles, OfTheEndsAreThoseOfTheExactLine) {
  solveModes(true);
  const Files files = written([] { headCurves(), writeEndCurves(), writeModeCurves(); });
  const CurveText &Z = files.at("zs"), &Y = files.at("ys"), &sc = files.at("short");
  const CurveText &oc = files.at("open"), &gs = files.at("gdis"), &go = files.at("gdio");
  const auto polar = [](const CurveText& curve, std::size_t row, std::size_t i) {
    const double angle = curve.rows.at(row).at(3 + 2 * i);
    EXPECT_TRUE(angle > -90.0001 && angle <= 270) << angle;
    return std::polar(curve.rows[row].at(2 + 2 * i), angle / DEGREES);
  };
  ASSERT_EQ(gs.rows.size(), 101U);
  for (std::size_t row = 0; row < 101; row += 6) {
    const int k = rowStep(row);
    static LineMatrix Yk, Zk;
    SOLVEDATA.at.YSTORE.load(k, Yk, 3);
    SOLVEDATA.at.ZSTORE.load(k, Zk, 3);
    std::size_t c = 2;
    for (int i = 1; i <= 3; ++i) {
      for (int j = i; j <= 3; ++j, c += 2) {
        expectNear({Z.rows[row][c], Z.rows[row][c + 1]}, Zk(i, j), "Z");
        expectNear({Y.rows[row][c], Y.rows[row][c + 1]}, Yk(i, j), "Y");
      }
      const Complex Zs = SOLVEDATA.second.ZSURGST(k, i), u = SOLVEDATA.second.GAMLEN(k, i);
      const auto m = static_cast<std::size_t>(i - 1);
      expectNear(polar(sc, row, m), Zs * std::tanh(u), "shorted");
      expectNear(polar(oc, row, m), Zs / std::tanh(u), "open");
    }
    if (row > 60) continue; // beyond the exact circuit has lost its digits
    const PiCircuit pi = exactPi(corner(Yk, 3), corner(Zk, 3), LENGTH);
    const Dense half = times(0.5L, pi.Y);
    const Dense shorted = inverse(sum(half, inverse(pi.Z)));
    const Dense open = inverse(sum(half, inverse(sum(pi.Z, inverse(half)))));
    for (std::size_t j = 0; j < 3; ++j) {
      expectNear(polar(gs, row, j), Complex(3.0L * shorted[j][0]), "phases shorted", 1e-6);
      expectNear(polar(go, row, j), Complex(3.0L * open[j][0]), "phases open", 1e-6);
    }
  }
}

// The rows of a file, and the values on the lines of a row.
TEST(CurveFiles, StepsAndRowsByModelAndRoute) {
  using Lines = std::vector<std::size_t>;
  solveBothLoops(singleCircuit(phaseModel(KEYS)), LENGTH);
  for (const auto& [model, route, NFUSE, n, file, rows, values] :
       std::vector<std::tuple<char, int, int, int, const char*, std::size_t, Lines>>{
           {'p', ROUTECONSTANTS, 106, 3, "zm", 101, {11}},
           {'p', ROUTECONSTANTS, 5, 3, "timp", 0, {}},
           {'p', ROUTEMULTIPLE, 100, 3, "ycmp", 95, {20}},
           {'p', ROUTEMULTIPLE, 99, 3, "ycmp", 99, {20}},
           {'p', ROUTEMULTIPLE, 99, 3, "hmp", 94, {20}},
           {'p', ROUTEMULTIPLE, 98, 3, "hpp", 98, {20}},
           {'p', ROUTECONSTANTS, 106, 3, "zs", 0, {}},
           {'p', ROUTECONSTANTS, 6, 15, "ycmp", 6, {403, 49}},
           {'p', ROUTECONSTANTS, 6, 21, "hpp", 6, {403, 403, 78}},
           {'f', ROUTECONSTANTS, 106, 3, "zmf", 101, {11}},
           {'f', ROUTEMULTIPLE, 99, 3, "zpf", 99, {11}},
           {'f', ROUTEMULTIPLE, 99, 3, "zp", 94, {11}},
           {'m', ROUTEMULTIPLE, 7, 2, "zs", 2, {8}},
           {'m', ROUTEMULTIPLE, 5, 3, "amm", 0, {}}}) {
    const Files files = written([m = model, to = route, last = NFUSE, order = n] {
      choose(m, order);
      RUNDATA.run.DATAFMT = to;
      SOLVEDATA.grid.NFUSE = last;
      headCurves(), writeEndCurves(), writePhaseLineCurves(), writePhaseFitCurves();
      writeSeriesFitCurves(SOLVEDATA.at.ZSTORE), writeSeriesLineCurves(), writeModeCurves();
    });
    const CurveText curve = files.at(file);
    ASSERT_EQ(curve.rows.size(), rows) << file << NFUSE;
    ASSERT_EQ(curve.perLine.size(), rows * values.size());
    for (std::size_t i = 0; i < curve.perLine.size(); ++i)
      EXPECT_EQ(curve.perLine[i], values[i % values.size()]) << file;
    EXPECT_EQ(files.count("gdis"), model != 'f' && NFUSE > 5 && n == 3);
    if (rows > 0) expectNear(curve.rows.back()[1], SOLVEDATA.grid.FREQ[NFUSE], file);
  }
}

TEST(CurveFiles, AreThoseOfModelAndKind) {
  solveBothLoops(singleCircuit(phaseModel(KEYS)), LENGTH);
  const std::string mode = "zcmm zcpm amm apm timm tipm lamdam lamdap zm ym zp yp";
  for (const auto& [model, n, kind, names] : std::vector<std::tuple<char, int, int, std::string>>{
           {'m', 4, OVERHEADLINE, mode},
           {'m', 3, CABLESYSTEM, mode},
           {'m', 1, OVERHEADLINE, mode + " zs ys short open"},
           {'p', 4, OVERHEADLINE, "ycmp ycpp hmm hpm hmp hpp timp tipp lamdam lamdap zm ym zp yp"},
           {'f', 3, OVERHEADLINE, "zmf zpf zm ym zp yp zs ys short open"},
           {'-', 3, OVERHEADLINE, ""}}) {
    Files files = written([m = model, order = n, k = kind] { choose(m, order, k), headCurves(); });
    std::istringstream in(names);
    for (std::string name; in >> name;) EXPECT_EQ(files.erase(name), 1U) << name;
    EXPECT_TRUE(files.empty()) << model << n;
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
  EXPECT_EQ(files.at("zp").rows.at(0).at(3), 180);
  EXPECT_TRUE(files.at("ym").rows.empty());
}

// Trouble is told and changes nothing else. Names stay in the directory.
TEST(CurveFiles, TroubleIsToldAndTheRunGoesOn) {
  ProgramRun runs[2];
  for (const std::size_t detail : {0U, 1U}) {
    const Scratch scratch;
    const std::string body = singleCircuit(phaseModel(detail == 1 ? KEYS : WEIGHTS));
    const std::string name = "Line Summary\n{\nLine Name: '../a/b'\n}\n";
    scratch.file("a.cvi", description(name + body));
    std::filesystem::create_directory(scratch.file(".._a_b_zm.out"));
    std::filesystem::create_symlink("/dev/full", scratch.file(".._a_b_hmp.out"));
    std::filesystem::create_symlink("/dev/full", scratch.file(".._a_b_zs.out"));
    std::filesystem::create_symlink("missing/x", scratch.file(".._a_b_gdio.out"));
    runs[detail] = runProgram({"/file", "a.cvi", "/length", "1e5"}, scratch.path());
  }
  std::string told, others;
  std::istringstream console(runs[1].console);
  for (std::string line; std::getline(console, line);)
    (line.find("Curve File") == std::string::npos ? others : told) += line + "\n";
  EXPECT_EQ(told, lines({"Error in Writing Detail Curve File: .._a_b_hmp.out",
                         "Cannot Open Detail Curve File: .._a_b_zm.out",
                         "Error in Writing Detail Curve File: .._a_b_zs.out",
                         "Cannot Open Detail Curve File: .._a_b_gdio.out"}));
  EXPECT_EQ(others, runs[0].console);
  EXPECT_EQ(runs[1].status, 0);
  EXPECT_EQ(runs[1].files.size(), 2U + 16U);
  for (const auto& [file, text] : runs[0].files) EXPECT_EQ(runs[1].files.at(file), text);
}

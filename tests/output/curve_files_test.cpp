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
  std::string header;
  std::vector<std::vector<double>> rows;
  std::vector<std::size_t> perLine; // values on each line
};

CurveText readCurve(const std::string& text) {
  CurveText curve;
  std::istringstream in(text);
  std::getline(in, curve.header);
  for (std::string line; std::getline(in, line);) {
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

using Files = std::map<std::string, std::string>; // by suffix

// A pair of files, of magnitudes and of angles, as complex numbers.
struct PolarCurve {
  CurveText size, angle;

  PolarCurve(const Files& files, const std::string& a, const std::string& b)
      : size(readCurve(files.at(a))), angle(readCurve(files.at(b))) {}
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

void expectMatrices(const PolarCurve& curve, const std::string& what,
                    const std::function<Dense(Wide)>& A) {
  std::vector<Dense> at(112);
  const int n = RUNDATA.line.NC;
  for (int k = 6; k <= 106; ++k)
    at[static_cast<std::size_t>(k)] = A(Wide(0, SOLVEDATA.grid.WFREQ[k]));
  expectColumns(curve, 1, 2, n * n, what, [&](int k, int e) {
    const auto i = static_cast<std::size_t>(e / n), j = static_cast<std::size_t>(e % n);
    return Complex(at[static_cast<std::size_t>(k)][i][j]);
  });
}

// What a child that has this process's stores writes, by suffix.
Files written(const std::function<void()>& code) {
  const Scratch scratch;
  RUNDATA.line.LNAME = "x";
  const ChildResult child = runChild([&] {
    if (chdir(scratch.path().c_str()) == 0) code();
  });
  EXPECT_EQ(child.status, 0);
  EXPECT_EQ(child.console, "");
  Files files;
  for (const auto& entry : std::filesystem::directory_iterator(scratch.path()))
    files[entry.path().filename().string().substr(1)] = contentOf(entry.path());
  return files;
}

Files ofProgram(const ProgramRun& run) {
  Files files;
  for (const auto& [name, text] : run.files) {
    if (name.starts_with("_")) files[name] = text;
  }
  return files;
}

std::string suffixes(const Files& files) {
  std::string all;
  for (const auto& file : files) all += file.first.substr(1, file.first.find('.') - 1) + " ";
  return all;
}

std::string sorted(const std::string& words) {
  Files files;
  std::istringstream in(words);
  for (std::string word; in >> word;) files["_" + word + ".out"] = "";
  return suffixes(files);
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

} // namespace

TEST(CurveFiles, OfThePhaseModelAreTheLineAndItsModelFile) {
  const std::string shunt = "ShuntConductance: 1e-11\n";
  const std::string dc =
      KEYS + "DC Correction Type: 1\nMaximum Residue/Pole Ratio Tolerance: 0.5\n";
  for (const std::string& body :
       {singleCircuit(phaseModel(KEYS), shunt), doubleCircuit(phaseModel(dc)),
        singleCircuit(phaseModel(KEYS), shunt + "Transposed: 1\n")}) {
    solveBothLoops(body, LENGTH);
    const Scratch scratch;
    scratch.file("a.cvi", description(body));
    const ProgramRun run = runProgram({"/file", "a.cvi", "/length", "1e5"}, scratch.path());
    const Files files = ofProgram(run);
    const PhaseFile model = readPhaseFile(run.files.at("a.cvo"));
    ASSERT_EQ(model.trouble, "");
    const FrequencyStore& A = SOLVEDATA.at;
    const SecondLoopStore& T = SOLVEDATA.second;
    expectElements({files, "_zm.out", "_zp.out"}, 1, "Z", A.ZSTORE);
    expectElements({files, "_ym.out", "_yp.out"}, 1, "Y", A.YSTORE);
    expectElements({files, "_timp.out", "_tipp.out"}, 1, "TI",
                   SOLVEDATA.first.IDEALT ? T.TIST : A.MTI);
    expectColumns({files, "_lamdam.out", "_lamdap.out"}, 0, 1, RUNDATA.line.NC, "lambda",
                  [&](int k, int e) { return A.MEIG(k, e + 1); });
    const PolarCurve Yc(files, "_ycmp.out", "_ycpp.out"), H(files, "_hmp.out", "_hpp.out");
    expectElements(Yc, 2, "Yc", T.YCST);
    expectElements(H, 2, "H", T.HST);
    expectMatrices(Yc, "fitted Yc", [&](Wide s) { return model.Yc(s); });
    expectMatrices(H, "fitted H", [&](Wide s) { return model.H(s); });
  }
}

// Each group's function with its delay is the mean of some modes, and the fit is as near as
// printed.
TEST(CurveFiles, GroupsAreMeansOfModes) {
  const std::string body = doubleCircuit(phaseModel(KEYS));
  solveBothLoops(body, LENGTH);
  const Scratch scratch;
  scratch.file("a.cvi", description(body));
  const ProgramRun run = runProgram({"/file", "a.cvi", "/length", "1e5"}, scratch.path());
  const PhaseFile model = readPhaseFile(run.files.at("a.cvo"));
  const PolarCurve groups(ofProgram(run), "_hmm.out", "_hpm.out");
  std::istringstream table(run.console.substr(run.console.rfind("    -------    -------------")));
  std::string word;
  std::getline(table, word);
  ASSERT_GT(model.delays.size(), 1U);
  for (std::size_t g = 0; g < model.delays.size(); ++g) {
    double printed = 0, nearest = 1, deviation = 0;
    table >> word >> printed;
    std::getline(table, word);
    for (unsigned members = 1; members < 64; ++members) {
      double distance = 0;
      for (std::size_t row = 0; row < 101; row += 10) {
        const int k = rowStep(row);
        Complex mean = 0;
        for (int i = 0; i < 6; ++i) {
          if ((members >> i & 1U) != 0)
            mean += SOLVEDATA.second.HMODE(k, i + 1) / static_cast<double>(std::popcount(members));
        }
        const double turn = SOLVEDATA.grid.WFREQ[k] * static_cast<double>(model.delays[g]);
        const Complex bare = mean * Complex(std::cos(turn), std::sin(turn));
        distance = std::max(distance, std::abs(groups(row, 2 + 2 * g) - bare));
      }
      nearest = std::min(nearest, distance);
    }
    EXPECT_LT(nearest, 1e-6) << g;
    for (std::size_t row = 0; row < 101; ++row)
      deviation = std::max(deviation, std::abs(groups(row, 2 + 2 * g) - groups(row, 3 + 2 * g)));
    EXPECT_LE(100 * deviation, printed + 1e-4) << g;
    EXPECT_GT(100 * deviation, 0.1 * printed) << g;
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
    const PolarCurve Z(files, "_zcmm.out", "_zcpm.out"), A(files, "_amm.out", "_apm.out");
    const PolarCurve TI(files, "_timm.out", "_tipm.out");
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
      for (std::size_t c = 2; c < 8; ++c) {
        EXPECT_LE(A.angle.rows[row][c], 0);
        EXPECT_GT(A.angle.rows[row][c], -360);
      }
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
  const CurveText Z = readCurve(files.at("_zs.out")), Y = readCurve(files.at("_ys.out"));
  const CurveText sc = readCurve(files.at("_short.out")), oc = readCurve(files.at("_open.out"));
  const CurveText gs = readCurve(files.at("_gdis.out")), go = readCurve(files.at("_gdio.out"));
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
      expectNear(polar(sc, row, m) * polar(oc, row, m), Zs * Zs, "product", 3e-7);
      expectNear(polar(sc, row, m), Zs * std::tanh(u), "shorted");
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

TEST(CurveFiles, StepsAndRowsByModelAndRoute) {
  solveBothLoops(singleCircuit(phaseModel(KEYS)), LENGTH);
  struct Case {
    char model;
    int route, NFUSE, conductors;
    const char* suffix;
    std::size_t rows;
    std::vector<std::size_t> lines; // values on the lines of a row
  };
  const Case cases[] = {
      {'p', ROUTECONSTANTS, 106, 3, "_zm.out", 101, {11}},
      {'p', ROUTECONSTANTS, 5, 3, "_timp.out", 0, {}},
      {'p', ROUTEMULTIPLE, 100, 3, "_ycmp.out", 95, {20}},
      {'p', ROUTEMULTIPLE, 99, 3, "_ycmp.out", 99, {20}},
      {'p', ROUTEMULTIPLE, 99, 3, "_hmp.out", 94, {20}},
      {'p', ROUTEMULTIPLE, 98, 3, "_hpp.out", 98, {20}},
      {'p', ROUTEMULTIPLE, 98, 3, "_lamdap.out", 98, {5}},
      {'p', ROUTECONSTANTS, 106, 3, "_zs.out", 0, {}},
      {'p', ROUTECONSTANTS, 6, 15, "_ycmp.out", 6, {403, 49}},
      {'p', ROUTECONSTANTS, 6, 21, "_hpp.out", 6, {403, 403, 78}},
      {'f', ROUTECONSTANTS, 106, 3, "_zmf.out", 101, {11}},
      {'f', ROUTEMULTIPLE, 99, 3, "_zpf.out", 99, {11}},
      {'f', ROUTEMULTIPLE, 99, 3, "_zp.out", 94, {11}},
      {'f', ROUTEMULTIPLE, 5, 3, "_ym.out", 0, {}},
      {'m', ROUTEMULTIPLE, 7, 2, "_zs.out", 2, {8}},
      {'m', ROUTEMULTIPLE, 5, 3, "_amm.out", 0, {}},
  };
  for (const Case& c : cases) {
    const Files files = written([&] {
      RUNDATA.model = ModelChoice{};
      RUNDATA.model.MODFDP = c.model == 'p';
      RUNDATA.model.MODMFDTD = c.model == 'f';
      RUNDATA.model.MODFDM = c.model == 'm';
      RUNDATA.run.DATAFMT = c.route;
      RUNDATA.line.NC = c.conductors;
      SOLVEDATA.grid.NFUSE = c.NFUSE;
      headCurves(), writeEndCurves(), writePhaseLineCurves(), writePhaseFitCurves();
      writeSeriesFitCurves(SOLVEDATA.at.ZSTORE), writeSeriesLineCurves(), writeModeCurves();
    });
    const CurveText curve = readCurve(files.at(c.suffix));
    ASSERT_EQ(curve.rows.size(), c.rows) << c.suffix << c.NFUSE;
    EXPECT_EQ(curve.perLine.size(), c.rows * c.lines.size());
    for (std::size_t i = 0; i < curve.perLine.size(); ++i)
      EXPECT_EQ(curve.perLine[i], c.lines[i % c.lines.size()]) << c.suffix;
    EXPECT_EQ(files.count("_gdis.out"), c.model != 'f' && c.NFUSE > 5 && c.conductors == 3);
    if (c.rows == 0) continue;
    const auto last = curve.rows.back();
    EXPECT_NEAR(last[1], SOLVEDATA.grid.FREQ[c.NFUSE], 1e-7 * last[1]);
    EXPECT_NEAR(last[0], std::log10(last[1]), 1e-7);
  }
}

TEST(CurveFiles, AreThoseOfModelAndKind) {
  solveBothLoops(singleCircuit(phaseModel(KEYS)), LENGTH);
  const auto headed = [](bool mode, bool phase, bool series, int n, int iscable) {
    return suffixes(written([=] {
      RUNDATA.model = ModelChoice{};
      RUNDATA.model.MODFDM = mode;
      RUNDATA.model.MODFDP = phase;
      RUNDATA.model.MODMFDTD = series;
      RUNDATA.line.NC = n;
      RUNDATA.run.ISCABLE = iscable;
      headCurves();
    }));
  };
  const std::string mode = "zcmm zcpm amm apm timm tipm lamdam lamdap zm ym zp yp";
  EXPECT_EQ(headed(true, false, false, 4, OVERHEADLINE), sorted(mode));
  EXPECT_EQ(headed(true, false, false, 3, CABLESYSTEM), sorted(mode));
  EXPECT_EQ(headed(true, false, false, 1, OVERHEADLINE), sorted(mode + " zs ys short open"));
  EXPECT_EQ(headed(false, true, false, 4, OVERHEADLINE),
            sorted("ycmp ycpp hmm hpm hmp hpp timp tipp lamdam lamdap zm ym zp yp"));
  EXPECT_EQ(headed(false, false, true, 3, OVERHEADLINE),
            sorted("zmf zpf zm ym zp yp zs ys short open"));
  EXPECT_EQ(headed(false, false, false, 3, OVERHEADLINE), "");
}

// Trouble with curve files is told, and changes nothing else. Names stay in the directory.
TEST(CurveFiles, TroubleIsToldAndTheRunGoesOn) {
  ProgramRun runs[2];
  const Scratch scratch;
  for (const std::size_t detail : {0U, 1U}) {
    std::string body = singleCircuit(phaseModel(detail == 1 ? KEYS : WEIGHTS));
    body.insert(body.find("Number"), "Line Name: '../a/b'\n");
    scratch.file("a.cvi", description(body));
    if (detail == 1) {
      std::filesystem::create_directory(scratch.file(".._a_b_zm.out"));
      for (const char* name : {".._a_b_hmp.out", ".._a_b_zs.out"})
        std::filesystem::create_symlink("/dev/full", scratch.file(name));
      std::filesystem::create_symlink("missing/x", scratch.file(".._a_b_gdio.out"));
    }
    runs[detail] = runProgram({"/file", "a.cvi", "/length", "1e5"}, scratch.path());
    for (const char* name : {"a.cvo", "a.out"}) std::filesystem::remove(scratch.file(name));
  }
  std::string console = runs[1].console;
  for (const std::string line : {"Error in Writing Detail Curve File: .._a_b_hmp.out\n",
                                 "Cannot Open Detail Curve File: .._a_b_zm.out\n",
                                 "Error in Writing Detail Curve File: .._a_b_zs.out\n",
                                 "Cannot Open Detail Curve File: .._a_b_gdio.out\n"}) {
    const std::size_t at = console.find(line);
    ASSERT_NE(at, std::string::npos) << console;
    console.erase(at, line.size());
  }
  EXPECT_EQ(console, runs[0].console);
  EXPECT_EQ(runs[1].status, 0);
  EXPECT_EQ(runs[1].files.at("a.cvo"), runs[0].files.at("a.cvo"));
  EXPECT_EQ(runs[1].files.at("a.out"), runs[0].files.at("a.out"));
  EXPECT_EQ(runs[1].files.size(), 2U + 16U);
}

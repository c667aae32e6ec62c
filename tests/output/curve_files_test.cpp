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
#include "support/description.h"
#include "support/phase_file.h"
#include "support/scratch.h"
#include "support/solve.h"
#include "support/whole_run.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <sstream>
#include <sys/file.h>

using namespace lcp;
using namespace lcp::test;

namespace {

constexpr double LENGTH = 1e5; // m
const std::string KEYS = EVENWEIGHTS + "Write Detailed Output Files: 1\n";

struct CurveText {
  std::vector<std::vector<double>> rows; // behind the header: log f, f, values
  std::vector<std::size_t> perLine;      // values on each line
};

CurveText readCurve(const std::string& text) {
  CurveText curve;
  const std::vector<std::string> all = splitLines(text);
  for (const std::string& line : all) {
    if (&line == all.data()) continue; // the header
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

// The curve files of a line named x.
Files curvesIn(const std::map<std::string, std::string>& texts) {
  Files files;
  for (const auto& [name, text] : texts) {
    if (name.starts_with("x_")) files[name.substr(2, name.size() - 6)] = readCurve(text);
  }
  return files;
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
  std::map<std::string, std::string> texts;
  for (const auto& entry : std::filesystem::directory_iterator(scratch.path()))
    texts[entry.path().filename().string()] = contentOf(entry.path());
  return curvesIn(texts);
}

// Magnitudes of the terms of the sum at hand: poles that lie close together cancel, and the sum is
// good to the rounding of its terms.
double cancelling = 0;

void expectNear(Complex a, Complex b, const std::string& what, double tolerance = 1.2e-7) {
  EXPECT_LE(std::abs(a - b), tolerance * std::abs(b) + 1e-15 * cancelling + 1e-14)
      << what << a << b;
}

Complex polar(double size, double angle) {
  return size * Complex(std::cos(angle / DEGREES), std::sin(angle / DEGREES)); // size < 0 too
}

using Value = std::function<Complex(int step, int element)>;

// A file of magnitudes and one of angles: behind the frequency, at the 101 steps of the fit range,
// each of the elements by all functions (the sampled one, the fitted one).
void expectCurves(const Files& files, const std::string& a, const std::string& b, int elements,
                  const std::vector<Value>& functions) {
  const CurveText &size = files.at(a), &angle = files.at(b);
  const std::size_t stride = functions.size(), n = static_cast<std::size_t>(elements) * stride;
  ASSERT_EQ(size.rows.size(), 101U) << a;
  EXPECT_EQ(size.rows[0].size(), 2 + n) << a;
  for (int k = 6; k <= 106; ++k) {
    const auto row = static_cast<std::size_t>(k - 6);
    ASSERT_NEAR(size.rows[row][1], SOLVEDATA.grid.FREQ[k], 1e-7 * SOLVEDATA.grid.FREQ[k]);
    ASSERT_NEAR(angle.rows.at(row).at(0), SOLVEDATA.grid.LOGF[k], 1e-7);
    for (std::size_t c = 0; c < n; ++c) {
      cancelling = 0;
      const Complex value = functions[c % stride](k, static_cast<int>(c / stride));
      expectNear(polar(size.rows[row].at(2 + c), angle.rows[row].at(2 + c)), value, a);
    }
  }
  cancelling = 0;
}

using Elements = CurveMatrix<Complex, MAXFREQ>;

Value valuesOf(const Elements& A) {
  return [&A](int k, int e) { return A(k, e / RUNDATA.line.NC + 1, e % RUNDATA.line.NC + 1); };
}

// Of a matrix of the model file at the step's frequency.
Value valuesOf(const PhaseFile& model, Dense (PhaseFile::*A)(Wide) const) {
  return [&model, A](int k, int e) {
    const auto n = static_cast<std::size_t>(RUNDATA.line.NC), at = static_cast<std::size_t>(e);
    return Complex((model.*A)(Wide(0, SOLVEDATA.grid.WFREQ[k]))[at / n][at % n]);
  };
}

Complex valueOf(const RationalFit& F, int k) {
  Complex sum = F.D;
  for (int m = 1; m <= F.N; ++m) {
    const Complex term = F.R[m] / (Complex(0, SOLVEDATA.grid.WFREQ[k]) - F.P[m]);
    sum += term;
    cancelling += std::abs(term);
  }
  return sum;
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

// With its delay each group's function is that of its modes, where these are all the same.
void expectGroups(const CurveText& size, const CurveText& angle, const PhaseFile& model) {
  for (std::size_t g = 0; g < model.delays.size(); ++g) {
    double deviation = 0, away[3] = {};
    for (std::size_t row = 0, c = 2 + 2 * g; row < 101; ++row) {
      const int k = static_cast<int>(row) + 6;
      const double turn = SOLVEDATA.grid.WFREQ[k] * static_cast<double>(model.delays[g]);
      const Complex F = polar(size.rows[row].at(c), angle.rows[row].at(c));
      const Complex fit = polar(size.rows[row].at(c + 1), angle.rows[row].at(c + 1));
      deviation = std::max(deviation, std::abs(F - fit));
      for (int i = 0; i < 3; ++i) {
        const Complex H = SOLVEDATA.second.HMODE(k, i + 1);
        away[i] = std::max(away[i], std::abs(F * std::polar(1.0, -turn) - H));
      }
    }
    EXPECT_LT(*std::min_element(away, away + 3), 1e-6) << g;
    EXPECT_TRUE(deviation > 1e-6 && deviation < 0.02) << g << " " << deviation;
  }
}

} // namespace

TEST(CurveFiles, OfThePhaseModelAreTheLineAndItsModelFile) {
  const std::string dc = "DC Correction Type: 1\nMaximum Residue/Pole Ratio Tolerance: 0.5\n";
  const std::string circuit = "ShuntConductance: 1e-11\nTransposed: 1\n";
  for (const std::string& body :
       {doubleCircuit(phaseModel(KEYS + dc)), singleCircuit(phaseModel(KEYS), circuit)}) {
    solveBothLoops(body, LENGTH);
    const ProgramRun run = runLine("Line Summary\n{\nLine Name: x\n}\n" + body, "1e5");
    const Files files = curvesIn(run.files);
    const PhaseFile model = readPhaseFile(run.files.at("a.cvo"));
    ASSERT_EQ(model.trouble, "");
    const FrequencyStore& A = SOLVEDATA.at;
    const SecondLoopStore& T = SOLVEDATA.second;
    const int n = RUNDATA.line.NC, all = n * n;
    expectCurves(files, "zm", "zp", all, {valuesOf(A.ZSTORE)});
    expectCurves(files, "ym", "yp", all, {valuesOf(A.YSTORE)});
    const Elements& TI = SOLVEDATA.first.IDEALT ? T.TIST : A.MTI;
    expectCurves(files, "timp", "tipp", all, {valuesOf(TI)});
    expectCurves(files, "lamdam", "lamdap", n, {[&](int k, int e) { return A.MEIG(k, e + 1); }});
    expectCurves(files, "ycmp", "ycpp", all, {valuesOf(T.YCST), valuesOf(model, &PhaseFile::Yc)});
    expectCurves(files, "hmp", "hpp", all, {valuesOf(T.HST), valuesOf(model, &PhaseFile::H)});
    if (SOLVEDATA.first.IDEALT) expectGroups(files.at("hmm"), files.at("hpm"), model);
  }
}

TEST(CurveFiles, OfTheModeModelAreItsModes) {
  for (const bool constant : {true, false}) {
    solveModes(constant);
    const SecondLoopStore& T = SOLVEDATA.second;
    const Files files = written([] { headCurves(), writeModeCurves(); });
    const auto undelayed = [&](int k, int e) {
      return T.HMODE(k, e + 1) * std::polar(1.0, SOLVEDATA.grid.WFREQ[k] * 1e-3 * T.TAUMS[e + 1]);
    };
    const auto transform = [&](int k, int e) {
      return constant ? T.TIST(SOLVEDATA.grid.NFREQ, e / 3 + 1, e % 3 + 1)
                      : valueOf(MODEMODEL.T(e / 3 + 1, e % 3 + 1), k);
    };
    expectCurves(files, "zcmm", "zcpm", 3,
                 {[&](int k, int e) { return T.ZSURGST(k, e + 1); },
                  [](int k, int e) { return valueOf(MODEMODEL.Z[e + 1], k); }});
    expectCurves(files, "amm", "apm", 3,
                 {undelayed, [](int k, int e) { return valueOf(MODEMODEL.A[e + 1], k); }});
    expectCurves(files, "timm", "tipm", 9, {valuesOf(T.TIST), transform});
    for (const std::vector<double>& row : files.at("apm").rows) {
      for (std::size_t c = 2; c < 8; ++c) EXPECT_TRUE(row[c] <= 0 && row[c] > -360);
    }
    for (const std::vector<double>& row : files.at("timm").rows) {
      for (std::size_t e = 0; e < 9; ++e) {
        const int i = static_cast<int>(e) / 3 + 1, j = static_cast<int>(e) % 3 + 1;
        EXPECT_EQ(row[2 + 2 * e] >= 0, T.TISUM(i, j) > 0) << i << j;
      }
    }
  }
}

// The ends of the line against its exact pi circuit, where the far end is shorted and open.
TEST(CurveFiles, OfTheEndsAreThoseOfTheExactLine) {
  solveModes(true);
  const Files files = written([] { headCurves(), writeEndCurves(), writeModeCurves(); });
  const auto at = [&](const char* file, std::size_t row, std::size_t i) {
    const std::vector<double>& values = files.at(file).rows.at(row);
    EXPECT_TRUE(values.at(3 + 2 * i) > -90.0001 && values[3 + 2 * i] <= 270) << values[3 + 2 * i];
    return polar(values[2 + 2 * i], values[3 + 2 * i]);
  };
  ASSERT_EQ(files.at("gdis").rows.size(), 101U);
  for (std::size_t row = 0; row < 101; row += 6) {
    const int k = static_cast<int>(row) + 6;
    static LineMatrix Y, Z;
    SOLVEDATA.at.YSTORE.load(k, Y, 3);
    SOLVEDATA.at.ZSTORE.load(k, Z, 3);
    const std::vector<double>&z = files.at("zs").rows[row], &y = files.at("ys").rows[row];
    std::size_t c = 2;
    for (int i = 1; i <= 3; ++i) {
      for (int j = i; j <= 3; ++j, c += 2) {
        expectNear({z[c], z[c + 1]}, Z(i, j), "Z");
        expectNear({y[c], y[c + 1]}, Y(i, j), "Y");
      }
      const Complex Zs = SOLVEDATA.second.ZSURGST(k, i), u = SOLVEDATA.second.GAMLEN(k, i);
      expectNear(at("short", row, static_cast<std::size_t>(i - 1)), Zs * std::tanh(u), "shorted");
      expectNear(at("open", row, static_cast<std::size_t>(i - 1)), Zs / std::tanh(u), "open");
    }
    if (row > 60) continue; // beyond the exact circuit has lost its digits
    const PiCircuit pi = exactPi(corner(Y, 3), corner(Z, 3), LENGTH);
    const Dense half = times(0.5L, pi.Y), shorted = inverse(sum(half, inverse(pi.Z)));
    const Dense open = inverse(sum(half, inverse(sum(pi.Z, inverse(half)))));
    for (std::size_t j = 0; j < 3; ++j) {
      expectNear(at("gdis", row, j), Complex(3.0L * shorted[j][0]), "phases shorted", 1e-6);
      expectNear(at("gdio", row, j), Complex(3.0L * open[j][0]), "phases open", 1e-6);
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
           {'p', ROUTECONSTANTS, 6, 21, "hpp", 6, {403, 403, 78}},
           {'f', ROUTEMULTIPLE, 99, 3, "zpf", 99, {11}},
           {'f', ROUTEMULTIPLE, 99, 3, "zp", 94, {11}},
           {'m', ROUTEMULTIPLE, 7, 2, "zs", 2, {8}},
           {'m', ROUTEMULTIPLE, 5, 3, "amm", 0, {}}}) {
    const Files files = written([m = model, to = route, last = NFUSE, order = n] {
      choose(m, order);
      RUNDATA.run.DATAFMT = to;
      SOLVEDATA.grid.NFUSE = last;
      headCurves(), writeEndCurves(), writePhaseLineCurves(), writePhaseFitCurves();
      writeSeriesFitCurves(), writeSeriesLineCurves(), writeModeCurves();
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

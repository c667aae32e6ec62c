// Detail curve files read back: sampled values against the line, fitted ones against the model.
#include "output/curve_files.h"

#include "base/constants.h"
#include "base/stop.h"
#include "modal/second_loop.h"
#include "output/curve_file.h"
#include "store/rundata.h"
#include "support/child.h"
#include "support/console_capture.h"
#include "support/dense_functions.h"
#include "support/description.h"
#include "support/scratch.h"
#include "support/solve.h"
#include "support/whole_run.h"
#include "support/written_model.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sstream>
#include <sys/file.h>
#include <sys/resource.h>

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

// A line whose length differs from that of whole values continues the previous row.
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

// Files written by a child that has this process's stores.
Files written(const std::function<void()>& code, int status = 0, const std::string& console = "") {
  const Scratch scratch;
  RUNDATA.line.LNAME = "x";
  const ChildResult child = runChild([&] {
    std::filesystem::current_path(scratch.path());
    code();
  });
  EXPECT_EQ(child.status, status);
  EXPECT_NE(child.console.find(console), std::string::npos) << child.console;
  Files files;
  for (const auto& entry : std::filesystem::directory_iterator(scratch.path()))
    files[entry.path().filename().string()] = contentOf(entry.path());
  return files;
}

using Row = std::vector<Complex>;
using RowOf = std::function<Row(int step)>; // empty: not checked

// The complex values of the 101 steps of the fit range: magnitudes and angles in two files, or side
// by side in one, or real and imaginary parts (no second file). Fitted values follow the sampled
// ones and must be near them, relative to the largest.
void expectCurve(const Files& files, const std::string& a, const std::string& b,
                 const RowOf& expected, double tolerance = 1.2e-7, double fitted = 0) {
  const Rows first = rowsOf(files, a), second = rowsOf(files, b.empty() ? a : b);
  const std::size_t stride = b.empty() || a == b ? 2 : 1, both = fitted > 0 ? 2 : 1;
  ASSERT_EQ(first.size(), 101U) << a;
  double scale = 0;
  for (int k = 6; k <= 106; ++k) {
    for (const Complex v : expected(k)) scale = std::max(scale, std::abs(v));
  }
  for (std::size_t row = 0; row < first.size(); ++row) {
    const int k = static_cast<int>(row) + 6;
    const std::vector<double>&x = first[row], &y = second.at(row);
    const Row values = expected(k);
    ASSERT_NEAR(x.at(1), SOLVEDATA.grid.FREQ[k], 1e-7 * x[1]);
    ASSERT_NEAR(y.at(0), SOLVEDATA.grid.LOGF[k], 1e-7);
    EXPECT_TRUE(values.empty() || x.size() == 2 + stride * both * values.size()) << a;
    for (std::size_t c = 0; c < both * values.size(); ++c) {
      const double re = x.at(2 + stride * c), im = y.at(1 + stride * (c + 1)), turn = im / DEGREES;
      const Complex value = b.empty() ? Complex(re, im) // magnitudes may be below 0
                                      : re * Complex(std::cos(turn), std::sin(turn));
      const Complex v = values[c / both];
      EXPECT_LE(std::abs(value - v),
                c % both == 1 ? fitted * scale : tolerance * std::abs(v) + 1e-14)
          << a << b << k << value << v;
    }
  }
}

RowOf elementsOf(const CurveMatrix<Complex, MAXFREQ>& A) {
  return [&A](int k) {
    Row row;
    const int n = RUNDATA.line.NC;
    for (int e = 0; e < n * n; ++e) row.push_back(A(k, e / n + 1, e % n + 1));
    return row;
  };
}

RowOf upperOf(const CurveMatrix<Complex, MAXFREQ>& A) {
  return [&A](int k) {
    return Row{A(k, 1, 1), A(k, 1, 2), A(k, 1, 3), A(k, 2, 2), A(k, 2, 3), A(k, 3, 3)};
  };
}

template <class Value> RowOf ofModes(Value value) {
  return [=](int k) {
    Row row;
    for (int i = 1; i <= RUNDATA.line.NC; ++i) row.push_back(value(k, i));
    return row;
  };
}

// Sending-end voltages of three equal phases with the far end shorted or open.
Row sentOf(int k, bool shorted) {
  static LineMatrix Y, Z;
  if (k > 66 || k % 6 != 0) return {}; // beyond, the exact circuit has lost its digits
  SOLVEDATA.at.YSTORE.load(k, Y, 3);
  SOLVEDATA.at.ZSTORE.load(k, Z, 3);
  const PiCircuit pi = exactPi(corner(Y, 3), corner(Z, 3), LENGTH);
  const Dense half = times(0.5L, pi.Y), through = shorted ? pi.Z : sum(pi.Z, inverse(half));
  const Dense end = times(3, inverse(sum(half, inverse(through))));
  return {Complex(end[0][0]), Complex(end[1][0]), Complex(end[2][0])};
}

} // namespace

TEST(CurveFiles, OfThePhaseModelAreTheLine) {
  const std::string dc = "DC Correction Type: 1\nMaximum Residue/Pole Ratio Tolerance: 2\n";
  const std::string circuit = "ShuntConductance: 1e-11\nTransposed: 1\n";
  for (const std::string& body :
       {doubleCircuit(phaseModel(KEYS + dc)), singleCircuit(phaseModel(KEYS), circuit)}) {
    solveBothLoops(body, LENGTH);
    const Files files = runLine("Line Summary\n{\nLine Name: x\n}\n" + body, "1e5").files;
    const FrequencyStore& A = SOLVEDATA.at;
    const SecondLoopStore& T = SOLVEDATA.second;
    expectCurve(files, "zm", "zp", elementsOf(A.ZSTORE));
    expectCurve(files, "ym", "yp", elementsOf(A.YSTORE));
    expectCurve(files, "timp", "tipp", elementsOf(SOLVEDATA.first.IDEALT ? T.TIST : A.MTI));
    expectCurve(files, "lamdam", "lamdap", ofModes([&](int k, int i) { return A.MEIG(k, i); }));
    expectCurve(files, "ycmp", "ycpp", elementsOf(T.YCST), 1.2e-7, 0.02);
    expectCurve(files, "hmp", "hpp", elementsOf(T.HST), 1.2e-7, 0.02);
  }
}

// The end curves are those of the exact line.
TEST(CurveFiles, OfTheModeModelAreItsModesAndEnds) {
  const std::string body =
      singleCircuit(modeModel("Write Detailed Output Files: 1\n"), "ShuntConductance: 1e-11\n");
  solveBothLoops(body, LENGTH);
  const std::string named = "Line Summary\n{\nLine Name: x\n}\n" + body;
  const SecondLoopStore& T = SOLVEDATA.second;
  for (const char* options : {"", "Numerical Options\n{\nImproved Fits : 1\n}\n"}) {
    const Files files = runLine(named + options, "1e5").files;
    const auto modes = readModel(files.at("a.cvo")).modes;
    expectCurve(files, "zcmm", "zcpm", ofModes([&](int k, int i) { return T.ZSURGST(k, i); }),
                1.2e-7, 0.1);
    const auto undelayed = [&](int k, int i) {
      const double delay = 1e-3 * modes[static_cast<std::size_t>(i) - 1].delay;
      return T.HMODE(k, i) * std::polar(1.0, SOLVEDATA.grid.WFREQ[k] * delay);
    };
    expectCurve(files, "amm", "apm", ofModes(undelayed), 1.2e-7, 0.02);
    for (const std::vector<double>& row : rowsOf(files, "apm")) {
      for (std::size_t c = 2; c < 8; ++c) EXPECT_TRUE(row[c] <= 0 && row[c] > -360) << row[c];
    }
    expectCurve(files, "timm", "tipm", elementsOf(T.TIST), 1.2e-7, 0.3);
    expectCurve(files, "zs", "", upperOf(SOLVEDATA.at.ZSTORE));
    expectCurve(files, "ys", "", upperOf(SOLVEDATA.at.YSTORE));
    for (const bool shorted : {true, false}) {
      const std::string input = shorted ? "short" : "open", sent = shorted ? "gdis" : "gdio";
      expectCurve(files, input, input, ofModes([&](int k, int i) {
                    const Complex tanh = std::tanh(T.GAMLEN(k, i));
                    return T.ZSURGST(k, i) * (shorted ? tanh : 1.0 / tanh);
                  }));
      expectCurve(
          files, sent, sent, [&](int k) { return sentOf(k, shorted); }, 1e-6);
    }
  }
}

TEST(CurveFiles, HalfTurnsArePositiveAndNoNumbersStayOut) {
  solveBothLoops(singleCircuit(phaseModel(KEYS)), LENGTH);
  const Files files = written([] {
    SOLVEDATA.grid.NFUSE = 6;
    SOLVEDATA.at.ZSTORE(6, 1, 2) = {-1.0, -0.0};
    SOLVEDATA.at.YSTORE(6, 3, 3) = std::nan("");
    headCurves(), writeLineCurvesBefore();
  });
  EXPECT_EQ(rowsOf(files, "zp").at(0).at(3), 180);
  EXPECT_TRUE(rowsOf(files, "ym").empty());
  const auto cut = [] {
    console::prepare();
    const rlimit limit{900, 900}; // the heading and less than the rows
    setrlimit(RLIMIT_FSIZE, &limit);
    SOLVEDATA.grid.NFUSE = 106;
    headCurves(), writeLineCurvesBefore();
  };
  EXPECT_EQ(textOf(written(cut, 1, "Error in Writing Output File: x_zm.out\n"), "zm"), "");
}

// A run that ends in its second loop leaves headings, and the rows of the steps before its end.
TEST(CurveFiles, KeepTheirRowsWhereTheRunEnds) {
  solveBothLoops(singleCircuit(modeModel("Write Detailed Output Files: 1\n")), LENGTH);
  const Files files = written([] {
    headCurves();
    for (int k = 1; k <= 8; ++k) writeEndCurves(k);
    stop(0);
  });
  EXPECT_EQ(rowsOf(files, "gdis").size(), 3U);
  EXPECT_EQ(rowsOf(files, "gdio").at(2).at(1), rowsOf(files, "gdis").at(2).at(1));
  EXPECT_EQ(textOf(files, "zm"), "   LOG10(FN) FN  Calc. Mag.: Z11, Z12 ... Z21, Z22 ... [ohms]\n");
}

// Trouble is reported and changes nothing else. Names stay in the directory.
TEST(CurveFiles, TroubleIsToldAndTheRunGoesOn) {
  ProgramRun runs[2];
  for (const std::size_t detail : {0U, 1U}) {
    const Scratch scratch;
    const std::string body = singleCircuit(phaseModel(detail == 1 ? KEYS : EVENWEIGHTS));
    scratch.file("a.cvi", description("Line Summary\n{\nLine Name: '../a/b'\n}\n" + body));
    std::filesystem::create_directory(scratch.file(".._a_b_zm.out"));
    std::filesystem::create_symlink("missing/x", scratch.file(".._a_b_gdio.out"));
    const int other = open(scratch.file(".._a_b_yp.out").c_str(), O_CREAT | O_RDONLY, 0600);
    EXPECT_EQ(flock(other, LOCK_EX), 0); // as another run in the folder holds it
    runs[detail] = runProgram({"/file", "a.cvi", "/length", "1e5"}, scratch.path());
    close(other);
  }
  const std::string cannot = "corvo: warning: Cannot Open Detail Curve File: .._a_b_";
  EXPECT_EQ(runs[1].errors, lines({cannot + "zm.out", cannot + "yp.out", cannot + "gdio.out"}));
  EXPECT_EQ(runs[1].console, runs[0].console);
  EXPECT_EQ(runs[1].status, 0);
  EXPECT_EQ(runs[1].files.size(), 2U + 17U);
  for (const auto& [file, text] : runs[0].files) EXPECT_EQ(runs[1].files.at(file), text);
}

TEST(CurveFiles, AFullDeviceEndsTheRunWithoutAModel) {
  const Scratch scratch;
  scratch.file("a.cvi",
               description("Line Summary\n{\nLine Name: x\n}\n" + singleCircuit(phaseModel(KEYS))));
  std::filesystem::create_symlink("/dev/full", scratch.file("x_hmp.out"));
  const ProgramRun run = runProgram({"/file", "a.cvi", "/length", "1e5"}, scratch.path());
  EXPECT_NE(run.console.find("Error in Writing Output File: x_hmp.out"), std::string::npos);
  EXPECT_EQ(run.status, 1);
  EXPECT_FALSE(run.files.contains("a.cvo"));
}

// Shared parts of the companions against values computed by hand.
//
// Readers, matrices, modes, frequencies, verdicts and command lines.
#include "base/constants.h"
#include "companions/shared/adaptive_scan.h"
#include "companions/shared/arguments.h"
#include "companions/shared/captured_run.h"
#include "companions/shared/console_text.h"
#include "companions/shared/direct_line.h"
#include "companions/shared/fit_ranges.h"
#include "companions/shared/followed_modes.h"
#include "companions/shared/model_file.h"
#include "companions/shared/nodal_scan.h"
#include "companions/shared/verdicts.h"
#include "companions/shared/wires.h"
#include "companions/verify/poles.h"
#include "store/rundata.h"
#include "support/description.h"
#include "support/overhead_lines.h"
#include "support/solve.h"

#include <cmath>
#include <fmt/format.h>
#include <gtest/gtest.h>

namespace lcp::companions {

namespace {

using test::phaseModel;
using test::singleCircuit;
using test::splitLines;

Matrix matrixOf(std::size_t n, const std::vector<Complex>& rows) {
  Matrix M(n, n);
  for (std::size_t e = 0; e < rows.size(); ++e) M(e / n, e % n) = rows[e];
  return M;
}

double distance(const Matrix& A, const Matrix& B) { return largest(combined(A, -1, B)); }

// A complete file is accepted, every part of it is rejected.
ModelFile readWhole(const std::string& text) {
  const auto lines = splitLines(text);
  std::string part;
  for (std::size_t k = 0; k < lines.size(); ++k) {
    EXPECT_NE(parseModelFile(part).trouble, "") << k;
    part += lines[k] + "\n";
  }
  EXPECT_NE(parseModelFile(text + " 1.0\n").trouble, "");
  ModelFile file = parseModelFile(text);
  EXPECT_EQ(file.trouble, "");
  return file;
}

std::string mfdtdFile(const std::string& count, int poles) {
  std::string text = "MFDTD  1\n 5.0E+05\n 2.0E+04\n 1.0E-05\n 2.0E-06\n 1.0E-11\n 1.0E-12\n";
  text += count + "\n";
  for (int m = 1; m <= poles; ++m) text += fmt::format("({}.0,0.0)\n(0.5,0.0)\n", -m);
  return text;
}

} // namespace

TEST(SharedModelFile, AHundredPolesFillTheirColumnsWithAsterisks) {
  for (const auto& [count, poles] : {std::pair{" 3", 3}, {"99", 99}, {"**", 100}}) {
    const ModelFile file = readWhole(mfdtdFile(count, poles));
    EXPECT_EQ(file.length, 2e4);
    ASSERT_EQ(file.Z.poles.size(), static_cast<std::size_t>(poles)) << count;
    Complex sum = 1e-5 + Complex(0, 7) * 2e-6;
    for (int m = 1; m <= poles; ++m) sum += 0.5 / (Complex(0, 7) + static_cast<double>(m));
    EXPECT_LT(std::abs(file.Z.at({0, 7})(0, 0) - sum), 1e-12);
  }
}

TEST(SharedModelFile, APhaseModelIsTheSumOfItsFractions) {
  const ModelFile file =
      readWhole("Fre-Phase  1 0               1          1     20000.0     /\n"
                "Fitting parameters for the char. admittance:\nN.o. conductors:\n 1\n"
                "Residues and poles:\n 1\n -30.0\n 0.0\n 0.06\n 0.0\n 0.002\n"
                "Fitting parameters for the propagation function:\nN.o. delay groups:\n 2\n"
                "Time delays:\n 0.1\n 0.2\nPoles:\n 1\n -5.0\n 0.0\n 1\n -8.0\n 3.0\n"
                "Residues:\n 4.0\n 0.0\n 6.0\n 1.0\n");
  const Complex s(0, 40);
  EXPECT_EQ(file.length, 2e4);
  EXPECT_LT(std::abs(file.Yc.at(s)(0, 0) - (0.002 + 0.06 / (s + 30.0))), 1e-15);
  const Complex H = 4.0 / (s + 5.0) * std::exp(-0.1 * s) +
                    Complex(6, 1) / (s - Complex(-8, 3)) * std::exp(-0.2 * s);
  EXPECT_LT(std::abs(file.H.at(s)(0, 0) - H), 1e-14);
}

TEST(SharedModelFile, BranchesOfAPiSectionAreTakenBySideAndPlace) {
  std::string text = " BRANCHES:\n";
  for (const auto& [i, j, c] : {std::tuple{1, 2, 0.5}, {1, 0, 0.25}, {2, 0, 0.125}})
    text += fmt::format(" S {:5}   S{:5}  C     {:16.8f}\n", i, j, c);
  text += " TRANSFORMERS:\n";
  for (const int i : {1, 2}) {
    text += fmt::format(" S {:5}   R{:5}   ", i, i);
    for (int j = 1; j <= i; ++j)
      text += fmt::format("     {:16.8f} {:16.8f}", 1.0 * i + j, 10.0 * i + j);
    text += "\n";
  }
  const PiFile pi = readWhole(text).pi;
  EXPECT_EQ(distance(pi.shuntC, matrixOf(2, {0.25, 0.5, 0.5, 0.125})), 0);
  EXPECT_EQ(distance(pi.R, matrixOf(2, {2, 3, 3, 4})), 0);
  EXPECT_EQ(distance(pi.L, matrixOf(2, {11, 21, 21, 22})), 0);
  EXPECT_EQ(numberBehind("\nstep 7: 5.5 %", "step 7"), 5.5);
}

TEST(SharedVerdicts, DeviationsKeepTheWorstAndLimitsJudge) {
  Deviation d;
  for (const double e : {0.01, 0.04, 0.02}) d.take(e, 1e3 * e, 1, 2);
  const Finding f = d.finding("H", "somewhere");
  EXPECT_EQ(f.value, 4);
  EXPECT_EQ(f.frequency, 40);
  EXPECT_NEAR(f.rms, std::sqrt(7.0), 1e-12); // per cent, of 1, 4 and 2
  d.take(std::nan(""), 7);
  d.take(0.5, 8);
  EXPECT_TRUE(std::isnan(d.worst));
  EXPECT_EQ(d.frequency, 7);

  Limits limits;
  for (const char* wrong : {"h", "h=1", "h:1=2", "none=1:2", "h=a:2", "h=1:"})
    EXPECT_FALSE(limits.set(wrong)) << wrong;
  EXPECT_TRUE(limits.set("h=2:3,yc=1e-3:4"));
  const struct {
    const char* name;
    double value;
    Verdict verdict;
  } judged[] = {{"h", 2, Verdict::GOOD},        {"h", 2.1, Verdict::DOUBTFUL},
                {"h", 3, Verdict::DOUBTFUL},    {"h", 3.1, Verdict::BAD},
                {"yc", 0.5, Verdict::DOUBTFUL}, {"z", 0.5, Verdict::GOOD},
                {"z", NAN, Verdict::BAD},       {"", 1e9, Verdict::TOLD}};
  for (const auto& j : judged) EXPECT_EQ(limits.judge(j.name, j.value), j.verdict) << j.name;
}

TEST(SharedLine, ModesOfTwoWiresAreTheirSumAndDifference) {
  // Y and Z of two equal wires: the vectors are (1,1) and (1,-1).
  const Complex y(1e-11, 3e-9), ym(0, -1e-9), z(2e-5, 4e-4), zm(1e-5, 1e-4);
  const LinePoint point{50, matrixOf(2, {y, ym, ym, y}), matrixOf(2, {z, zm, zm, z})};
  const Matrix turned = matrixOf(2, {1, 1, -1, 1});
  const LineModes modes = modesLike(point, turned);
  const double length = 3e5;
  for (std::size_t m = 0; m < 2; ++m) {
    const double sign = m == 0 ? -1 : 1;
    const Complex ys = y + sign * ym, zs = z + sign * zm, gamma = std::sqrt(ys * zs);
    EXPECT_LT(std::abs(modes.gamma[m] - gamma), 1e-12 * std::abs(gamma)) << m;
    EXPECT_LT(std::abs(modes.Zc[m] - std::sqrt(zs / ys)), 1e-9 * std::abs(modes.Zc[m])) << m;
    EXPECT_LT(std::abs(modes.TI(1, m) / modes.TI(0, m) - sign), 1e-9) << m;
  }
  const PhaseFunctions P = phaseFunctionsOf(point, modes, length);
  const Complex h0 = std::exp(-modes.gamma[0] * length), h1 = std::exp(-modes.gamma[1] * length);
  EXPECT_LT(std::abs(P.H(0, 1) - (h1 - h0) / 2.0), 1e-9);
  EXPECT_LT(std::abs(P.H(1, 1) - (h1 + h0) / 2.0), 1e-9);
  const Complex Yc = (1.0 / modes.Zc[1] - 1.0 / modes.Zc[0]) / 2.0;
  EXPECT_LT(std::abs(P.Yc(1, 0) - Yc), 1e-9 * std::abs(Yc));

  EXPECT_TRUE(std::isnan(largest(inverse(matrixOf(2, {1, 2, 2, 4})))));
  EXPECT_LT(distance(product(point.Z, inverse(point.Z)), identity(2)), 1e-12);
  const Matrix G = matrixOf(2, {2, Complex(1, 3), Complex(1, 5), 2}); // Hermitian part 2, 1 - j
  const double root = std::sqrt(2.0);
  const ScanPoint p = extremes(9, {identity(2), G});
  EXPECT_NEAR(p.value, 2 - root, 1e-12);
  EXPECT_NEAR(p.size, 2 + root, 1e-12);
}

TEST(SharedLine, ModesAreFollowedFromTheirReferenceBothWays) {
  const auto at = [](double f, double angle) {
    const Complex c = std::cos(angle), s = std::sin(angle);
    const Matrix T = matrixOf(2, {c, -s, s, c});
    const Matrix D = matrixOf(2, {Complex(0, f), 0, 0, Complex(0, 2 * f)});
    return LinePoint{f, product(product(T, D), inverse(T)), identity(2)};
  };
  // rotated by a quarter turn over the grid: the largest element alone would exchange the modes
  std::vector<LinePoint> line;
  std::vector<LineModes> modes;
  for (int k = 0; k <= 12; ++k) line.push_back(at(std::pow(2, k), k * TWOPI / 48));
  for (const auto& [from, reference] :
       {std::pair{4096.0, identity(2)}, {5.0, matrixOf(2, {0, 1, 1, 0})}}) {
    modes = followed(line, reference, from);
    for (std::size_t k = 0; k < line.size(); ++k) {
      const double angle = static_cast<double>(k) * TWOPI / 48;
      EXPECT_NEAR(std::abs(modes[k].TI(0, 1)), std::cos(angle), 1e-9) << k;
      EXPECT_NEAR(std::pow(std::abs(modes[k].gamma[1]), 2), line[k].f, 1e-9 * line[k].f) << k;
    }
  }
  EXPECT_EQ(largestRows(matrixOf(2, {1, 1, 1 + 1e-12, 2})), (std::vector<std::size_t>{0, 1}));
  holdRows(modes, {1, 0});
  for (const LineModes& M : modes) {
    EXPECT_GE(M.TI(1, 0).real(), 0);
    EXPECT_LT(distance(product(M.TIINV, M.TI), identity(2)), 1e-9);
  }
}

// Turned by complex factors, vectors and surge impedances still belong together.
TEST(SharedLine, HeldRowsAreRealAndKeepTheirImpedances) {
  const Complex y(1e-10, 3e-9), ym(0, -1e-9), z(2e-4, 4e-4), zm(1e-5, 2e-4);
  const LinePoint point{50, matrixOf(2, {y, ym, ym, 2.0 * y}), matrixOf(2, {z, zm, zm, 0.3 * z})};
  std::vector<LineModes> held{modesLike(point, identity(2))};
  holdRows(held, {1, 0});
  const LineModes& M = held[0];
  for (std::size_t m = 0; m < 2; ++m) {
    Complex Y = 0;
    for (std::size_t e = 0; e < 4; ++e)
      Y += M.TIINV(m, e / 2) * point.Y(e / 2, e % 2) * M.TIINV(m, e % 2);
    EXPECT_NEAR(M.TI(1 - m, m).imag(), 0, 1e-12);
    EXPECT_LT(std::abs(M.Zc[m] * Y - M.gamma[m]), 1e-9 * std::abs(M.gamma[m]));
  }
}

TEST(SharedLine, FrequenciesAreThoseOfTheFitAndTheDecadesAroundIt) {
  const std::string keys = "Curve Fitting Start Frequency: 10\nCurve Fitting End Frequency: 1e5\n"
                           "Total Number of Frequency Increments: 100\n";
  const double low = 10 / std::pow(10, 0.2);
  for (const auto& [circuit, zero] :
       {std::pair{"", ""}, std::pair{"ShuntConductance: 1e-11\n", "zero"}}) {
    test::solveFirstLoop(singleCircuit(phaseModel(keys), circuit));
    const auto ranges = fitRanges();
    ASSERT_EQ(ranges.size(), 5U);
    const struct {
      std::size_t count;
      double first, last;
      const char* limit;
    } wanted[] = {{106, low, 1e5, "own"}, // five points below the band
                  {105 * 9, low * std::pow(10, 0.004), 1e5 / std::pow(10, 0.004), "own"},
                  {31, low / 10, low, "outside"},
                  {31, 1e5, 1e6, "outside"},
                  {1, 1e-6, 1e-6, zero}};
    for (std::size_t r = 0; r < 5; ++r) {
      EXPECT_EQ(ranges[r].f.size(), wanted[r].count) << r;
      EXPECT_NEAR(ranges[r].f.front() / wanted[r].first, 1, 1e-9) << r;
      EXPECT_NEAR(ranges[r].f.back() / wanted[r].last, 1, 1e-9) << r;
      EXPECT_EQ(ranges[r].limitOf("own"), wanted[r].limit) << r;
    }
    for (int k = 1; k <= SOLVEDATA.grid.NFUSE; ++k) // the points that the program takes
      EXPECT_NEAR(ranges[0].f[static_cast<std::size_t>(k) - 1] / SOLVEDATA.grid.FREQ[k], 1, 1e-9);
  }
}

// Just below and just above the time that light takes over the length.
TEST(SharedLine, ADelayFasterThanLightIsDoubtful) {
  const std::string text = test::description(singleCircuit(phaseModel()));
  companions::readHere(test::scratchFile("line", text), 3e4);
  const double light = 3e4 / 299792458.0;
  for (const double part : {0.999, 1.001}) {
    ModelFile file;
    file.kind = ModelKind::Phase;
    file.H.delays = {light * part};
    const auto found = checkDelays(file, 3e4);
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[0].verdict, part < 1 ? Verdict::DOUBTFUL : Verdict::TOLD);
    EXPECT_EQ(found[0].words.ends_with(", faster than light"), part < 1) << found[0].words;
    EXPECT_NEAR(found[1].value, 1e5 * light * part, 1e-9); // us, a tenth
  }
}

TEST(SharedWires, ResistivityIsThatOfTheMetal) {
  RUNDATA = {};
  test::setConductor(1, 0, 10, 0.02, 1e-4);
  ConductorTable& C = RUNDATA.cond;
  EXPECT_NEAR(resistivityOfWire(1), 1e-4 * PI * 4e-4, 1e-18);
  C.CSTRND[1] = true;
  C.CSTRAD[1] = 1e-3;
  C.CNTOT[1] = 50;
  EXPECT_NEAR(resistivityOfWire(1), 1e-4 * PI * 50e-6, 1e-18);
  C.CTUBE[1] = true;
  C.CTHICK[1] = 0.005;
  EXPECT_NEAR(resistivityOfWire(1), 1e-4 * PI * (4e-4 - 2.25e-4), 1e-18);
}

TEST(SharedArguments, WordsAndOptionsAreTakenApart) {
  const OptionRow options[] = {{"--json", "", ""}, {"/length", "METRES", ""}};
  const Program program{"tool", "", "FILE", 1, 2, options, 9};
  const struct {
    std::vector<std::string> line;
    int status;
    const char* told;
  } lines[] = {
      {{"a", "--json", "/length", "5", "b", "/length", "7.5"}, 0, "a b 7.5 1 3"},
      {{"a"}, 0, "a -1 0 0"},
      {{"a", "/length", "--json"}, 2, ""},
      {{"a", "/length", "inf"}, 2, ""},
      {{"a", "/length"}, 9, ""},
      {{"a", "/lenght"}, 9, ""},
      {{"a", "-x"}, 9, ""},
      {{"a", ""}, 9, ""},
      {{"a", "b", "c"}, 9, ""},
      {{}, 9, ""},
      {{"--version"}, 0, "tool"},
  };
  for (const auto& l : lines) {
    std::vector<std::string> words = l.line;
    std::vector<char*> pointers;
    for (std::string& word : words) pointers.push_back(word.data());
    const test::ChildResult child = test::runChild([&] {
      EXPECT_NE(std::freopen("/dev/null", "w", stderr), nullptr);
      const Arguments a = parseArguments(program, pointers);
      for (const std::string& word : a.words) fmt::print("{} ", word);
      fmt::print("{} {:d} {}", a.numberOr("/length", -1), a.has("--json"), a.given.size());
      std::fflush(stdout);
    });
    EXPECT_EQ(child.status, l.status) << fmt::format("{}", fmt::join(l.line, " "));
    EXPECT_TRUE(child.console.starts_with(l.told)) << child.console;
  }
}

} // namespace lcp::companions

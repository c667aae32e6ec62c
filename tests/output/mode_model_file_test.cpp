// Mode model files read back by columns, and their functions compared with the modes of the line.
#include "output/mode_model_file.h"

#include "fit/mode_model.h"
#include "modal/second_loop.h"
#include "store/rundata.h"
#include "store/solvedata.h"
#include "support/child.h"
#include "support/phase_file.h"
#include "support/sampled_functions.h"
#include "support/scratch.h"
#include "support/solve.h"

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <sstream>

using namespace lcp;
using namespace lcp::test;

namespace {

constexpr double LENGTH = 1e5; // m

struct ModeRecord {
  Rational surge, attenuation; // this with the travel time as its delay
  std::vector<Rational> row;
};

// The values of a line, each in 20 columns.
std::vector<double> values(const std::string& line) {
  std::vector<double> all;
  EXPECT_EQ(line.size() % 20, 0U) << line;
  for (std::size_t c = 0; c + 20 <= line.size(); c += 20) {
    EXPECT_TRUE(line[c] == ' ' && line[c + 16] == 'E') << line;
    all.push_back(std::stod(line.substr(c, 20)));
  }
  return all;
}

class ModeFile {
public:
  std::vector<std::string> head, console;
  std::vector<ModeRecord> modes;

  ModeFile(const std::string& text, const std::string& shown)
      : console(splitLines(shown)), lines(splitLines(text)) {
    while (lines[at][0] != 'C') head.push_back(lines[at++]);
    for (int m = 1; m <= RUNDATA.line.NC; ++m) modes.push_back(mode(m));
    EXPECT_EQ(at, lines.size());
  }

private:
  std::vector<std::string> lines;
  std::size_t at = 0;

  const std::string& next() { return lines.at(at++); }

  ModeRecord mode(int m) {
    const std::string stars(44, '*');
    EXPECT_EQ(next(), fmt::format("C {} Mode{:2} Data => {}", stars, m, stars));
    ModeRecord record;
    const std::string nodes = next();
    EXPECT_EQ(nodes.substr(0, 17), fmt::format(" {0:5} {0:5}     ", m));
    EXPECT_EQ(nodes.substr(36), " / Nodes, Travel-Time(mS)");
    EXPECT_EQ(next(), fmt::format("C ** Mode {:2} Surge Impedances => ", m));
    record.surge = function();
    EXPECT_EQ(next(), fmt::format("C ** Mode {:2} Attenuation Constants => ", m));
    record.attenuation = function();
    record.attenuation.delay = 1e-3 * std::stod(nodes.substr(17, 19));
    EXPECT_EQ(next(), fmt::format("C ** Mode {:2} Current Transformation Matrix => ", m));
    for (int r = 1; r <= RUNDATA.line.NC; ++r) {
      EXPECT_EQ(next(), fmt::format("C ** Row {:2} => ", r));
      record.row.push_back(function());
    }
    return record;
  }

  // Real parts of up to six, and behind them their imaginary parts.
  std::vector<Complex> numbers(std::size_t count) {
    std::vector<Complex> all;
    while (all.size() < count) {
      const std::vector<double> re = values(next()), im = values(next());
      EXPECT_EQ(re.size(), im.size());
      EXPECT_EQ(re.size(), std::min<std::size_t>(6, count - all.size()));
      for (std::size_t m = 0; m < re.size(); ++m) all.emplace_back(re[m], im[m]);
    }
    return all;
  }

  Rational function() {
    const std::string first = next();
    EXPECT_EQ(first.substr(0, 1) + first.substr(5, 3), "    ");
    const auto count = static_cast<std::size_t>(std::stoi(first.substr(1, 4)));
    const std::vector<double> constant = values(first.substr(8));
    EXPECT_EQ(constant.size(), 2U);
    EXPECT_EQ(constant.at(1), 0);
    Rational f;
    f.D = constant[0];
    f.poles = numbers(count);
    f.residues = numbers(count);
    return f;
  }
};

// The file of a line, with a constant transformation or a fitted one as for a table of Y and Z.
ModeFile solveAndWrite(const std::string& body, bool constant = true) {
  SOLVEDATA.second.TISUM = {}; // as at the start of a run: each solve adds to it
  solveBothLoops(body, LENGTH);
  formFitWeights();
  if (!constant) RUNDATA.fit.CONSTT = false;
  const Scratch scratch;
  const ChildResult child = runChild([&] {
    TextFile file;
    if (!file.open(scratch.file("a.cvo"), EarlyEnd::KEEP)) std::abort();
    fitModes();
    writeModeModel(file);
    file.close();
  });
  EXPECT_EQ(child.status, 0);
  return {contentOf(scratch.file("a.cvo")), child.console};
}

// What the twelve digits of the file can change at s: little, but where poles nearly coincide their
// residues are large and cancel.
double rounding(const Rational& f, Complex s) {
  double sum = std::abs(f.D) + std::abs(f(s) * s * f.delay);
  for (std::size_t m = 0; m < f.poles.size(); ++m) {
    const double term = std::abs(f.residues[m] / (s - f.poles[m]));
    sum += term * (1 + std::abs(f.poles[m] / (s - f.poles[m])));
  }
  return 5e-12 * sum;
}

// The error and the count printed behind the title are those of the function in the file, which is
// real and stable.
void expectFit(const ModeFile& file, const std::string& title, const Rational& f,
               const Curve<Complex, MAXFREQ>& F) {
  double deviation = 0, peak = 0, rounded = 0;
  for (int k = 1; k <= SOLVEDATA.grid.NFUSE; ++k) {
    const Complex s(0, SOLVEDATA.grid.WFREQ[k]);
    deviation = std::max(deviation, std::abs(f(s) - F[k]));
    peak = std::max(peak, std::abs(F[k]));
    rounded = std::max(rounded, rounding(f, s));
    EXPECT_LE(std::abs(f(-s) - std::conj(f(s))), rounding(f, s)) << title;
  }
  const auto line = std::find(file.console.begin(), file.console.end(), title);
  ASSERT_LT(line, file.console.end() - 1) << title;
  double error = -1;
  int count = -1;
  std::istringstream(*(line + 1)) >> error >> count;
  EXPECT_NEAR(deviation / peak, error, rounded / peak) << title;
  EXPECT_EQ(f.N(), count) << title;
  EXPECT_EQ(badPoles(std::vector<Wide>(f.poles.begin(), f.poles.end())), 0) << title;
}

void expectModes(const ModeFile& file) {
  for (int m = 1; m <= RUNDATA.line.NC; ++m) {
    const ModeRecord& mode = file.modes[static_cast<std::size_t>(m) - 1];
    expectFit(file, fmt::format("Mode {:2} Surge Impedance:", m), mode.surge,
              SOLVEDATA.second.ZSURGST.curve(m));
    expectFit(file, fmt::format("Mode {:2} Attenuation Constant:", m), mode.attenuation,
              SOLVEDATA.second.HMODE.curve(m));
    EXPECT_EQ(mode.attenuation.D, 0);
    // all modes travel about as fast as light, the more the loss is taken out
    const double delay = mode.attenuation.delay;
    EXPECT_NEAR(delay, LENGTH / 2.99792458e8, 0.1 * delay);
  }
}

} // namespace

TEST(ModeModelFile, FunctionsAreTheModesOfTheLine) {
  const std::string flags = "Interpolate Travel Times: 0\nInfinite Line Length: 1\n";
  for (const auto& body : {doubleCircuit(modeModel()), singleCircuit(modeModel(flags)),
                           singleCircuit(modeModel(flags), "Transposed: 1\n")}) {
    const ModeFile file = solveAndWrite(body);
    expectModes(file);
    EXPECT_EQ(file.console[0], " FITTING ERROR                # OF POLES");
    EXPECT_EQ(file.console[1], " -------------                ----------");
    if (RUNDATA.line.NC != 3) continue;
    EXPECT_EQ(
        std::vector<std::string>(file.head.begin() + 5, file.head.end()),
        (std::vector<std::string>{"Fre-Dep  3 0                 1          1 /", "NOINT",
                                  "INFLENGTH", "! *** Length: .10000E+06 Metres ",
                                  "! ***  3 Conductors,  Ground Res.: 100.00     Ohm-Metres "}));
  }
}

// Without target the counts are the limits.
TEST(ModeModelFile, BlocksHoldSixValuesOnALine) {
  for (const int count : {1, 6, 7, 12, 13}) {
    const ModeFile file = solveAndWrite(singleCircuit(
        modeModel(fmt::format("Maximum Fitting Error (%) for Surge Impedance: 0\n"
                              "Maximum Fitting Error (%) for Attenuation Constant: 0\n"
                              "Maximum # of Poles for Surge Impedance Fit: {}\n"
                              "Maximum # of Poles for Attenuation Constant Fit: {}\n",
                              count, std::min(count, 8)))));
    expectModes(file);
    for (const ModeRecord& mode : file.modes) {
      EXPECT_EQ(mode.surge.N(), count);
      EXPECT_EQ(mode.attenuation.N(), std::min(count, 8));
    }
  }
}

TEST(ModeModelFile, TransformationIsThatOfItsStepOrFollowsTheVectors) {
  for (const bool constant : {true, false}) {
    const std::string key = "Frequency to Calculate Constant Transform: 5000\n";
    const ModeFile file = solveAndWrite(
        constant ? doubleCircuit(modeModel(key)) : singleCircuit(modeModel()), constant);
    const int n = RUNDATA.line.NC, last = SOLVEDATA.grid.NFREQ;
    for (int e = 0; e < n * n; ++e) {
      const int m = e / n + 1, r = e % n + 1;
      const auto F = SOLVEDATA.second.TIST.curve(m, r);
      const Rational& f =
          file.modes[static_cast<std::size_t>(e / n)].row[static_cast<std::size_t>(e % n)];
      if (!constant) {
        expectFit(file, fmt::format("Transform Element {:2},{:2}:", m, r), f, F);
        continue;
      }
      EXPECT_NEAR(SOLVEDATA.grid.FREQ[last], 5000, 1e-9);
      EXPECT_EQ(f.N(), 0);
      EXPECT_NEAR(std::fabs(f.D), std::abs(F[last]), 1e-11);
      double mean = 0; // its sign is that of the real parts
      for (int k = 1; k <= last; ++k) mean += F[k].real();
      EXPECT_GT(f.D * mean, 0) << m << " " << r;
    }
  }
}

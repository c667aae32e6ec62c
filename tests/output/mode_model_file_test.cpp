// Mode model files read back by columns, and their functions compared with the modes of the line.
#include "output/mode_model_file.h"

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

// Real parts of up to six, and behind them their imaginary parts.
std::vector<Complex> values(Numbers& in, std::size_t count) {
  std::vector<Complex> all(count);
  for (std::size_t first = 0; first < count; first += 6) {
    const std::size_t end = std::min(first + 6, count);
    for (std::size_t m = first; m < end; ++m) all[m].real(in.real());
    for (std::size_t m = first; m < end; ++m) all[m].imag(in.real());
  }
  return all;
}

Rational function(Numbers& in) {
  const std::size_t count = in.count();
  Rational f;
  f.D = in.real();
  EXPECT_EQ(in.number(), 0); // its imaginary part
  f.poles = values(in, count);
  f.residues = values(in, count);
  return f;
}

struct ModeFile {
  std::vector<std::string> console;
  std::vector<ModeRecord> modes;

  ModeFile(const std::string& text, const std::string& shown) : console(splitLines(shown)) {
    Numbers in(text, "\nC *");
    for (int m = 1; m <= RUNDATA.line.NC; ++m) {
      ModeRecord& record = modes.emplace_back();
      for (int i = 0; i < 3; ++i) EXPECT_EQ(in.count(), m); // title, both nodes
      const double delay = 1e-3 * in.real();
      EXPECT_EQ(in.count(), m);
      record.surge = function(in);
      EXPECT_EQ(in.count(), m);
      record.attenuation = function(in);
      record.attenuation.delay = delay;
      EXPECT_EQ(in.count(), m);
      for (int r = 1; r <= RUNDATA.line.NC; ++r) {
        EXPECT_EQ(in.count(), r);
        record.row.push_back(function(in));
      }
    }
    EXPECT_TRUE(!in.early && in.left() == 0);
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

// Without a target of the error the counts of poles are the limits.
TEST(ModeModelFile, FunctionsAreTheModesOfTheLine) {
  const std::string limits = "Maximum Fitting Error (%) for Surge Impedance: 0\n"
                             "Maximum Fitting Error (%) for Attenuation Constant: 0\n"
                             "Maximum # of Poles for Surge Impedance Fit: {0}\n"
                             "Maximum # of Poles for Attenuation Constant Fit: {0}\n";
  expectModes(solveAndWrite(doubleCircuit(modeModel())));
  for (const int count : {1, 6, 7, 13}) {
    const std::string model = modeModel(fmt::format(fmt::runtime(limits), count));
    const ModeFile file = solveAndWrite(singleCircuit(model, count == 6 ? "Transposed: 1\n" : ""));
    expectModes(file);
    for (const ModeRecord& mode : file.modes) EXPECT_EQ(mode.surge.N(), count);
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

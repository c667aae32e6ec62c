// Mode model files read back, and their functions compared with the modes of the line.
#include "store/rundata.h"
#include "support/solve.h"
#include "support/whole_run.h"
#include "support/written_model.h"

#include <cmath>
#include <fmt/format.h>
#include <sstream>

using namespace lcp;
using namespace lcp::test;

namespace {

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

// The error and the count printed behind the title are those of the function behind its delay.
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
    // all modes travel about as fast as light, the more the loss is taken out
    EXPECT_NEAR(1e-3 * mode.delay, LENGTH / 2.99792458e8, 1e-4 * mode.delay);
  }
}

} // namespace

// Without a target of the error the counts of poles are the limits.
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

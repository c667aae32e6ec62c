// Model files read back by columns and compared with what the line is.
#include "output/model_file.h"

#include "store/rundata.h"
#include "store/solvedata.h"
#include "support/child.h"
#include "support/solve.h"
#include "support/whole_run.h"
#include "support/written_model.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

constexpr double ANGULAR60 = 376.99111843077515; // rad/s

std::vector<std::string> modelFileOf(const std::string& body, const std::string& length) {
  return splitLines(runLine(body, length).files.at("a.cvo"));
}

// The branches of a PI file as matrices; of the shunts those of one end.
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
    // couplings stand in the file as capacitances, without their small negative conductance
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
  const ChildResult noted = runChild([] { // by magnitude in the file, one of rounding in silence
    dup2(STDOUT_FILENO, STDERR_FILENO);
    SOLVEDATA.second.RLOSS1.fill(1e-4);
    SOLVEDATA.second.RLOSS2.fill(1e-4);
    SOLVEDATA.second.RLOSS1[2] = -2.0 / 3;
    SOLVEDATA.second.RLOSS2[1] = -1e-18;
    TextFile text;
    writeBergeronModel(text);
  });
  EXPECT_EQ(noted.console,
            "corvo: mode 2 has a negative resistance of -0.6667 at 3000 Hz; the model "
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

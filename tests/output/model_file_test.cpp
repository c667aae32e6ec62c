// Model files read back by columns and compared with what the line is.
#include "output/model_file.h"

#include "store/rundata.h"
#include "store/solvedata.h"
#include "support/child.h"
#include "support/phase_file.h"
#include "support/solve.h"
#include "support/whole_run.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

constexpr double ANGULAR60 = 376.99111843077515; // rad/s

std::vector<std::string> modelFileOf(const std::string& body, const std::string& length) {
  return splitLines(runLine(body, length).files.at("a.cvo"));
}

double number(const std::string& line, std::size_t column, std::size_t width) {
  return std::stod(line.substr(column - 1, width));
}

// One end's shunt matrix and the series matrix of a PI file, read by its columns.
PiCircuit readPiFile(const std::vector<std::string>& file, std::size_t n, double w) {
  PiCircuit pi{Dense(n, std::vector<Wide>(n)), Dense(n, std::vector<Wide>(n))};
  bool series = false;
  for (const std::string& line : file) {
    if (line == " TRANSFORMERS:") series = true;
    if (line.size() < 41 || line[1] != 'S') continue; // the receiving end repeats the sending end
    const auto i = static_cast<std::size_t>(number(line, 4, 5));
    const auto j = static_cast<std::size_t>(number(line, 13, 5));
    for (std::size_t c = 0; series && c < i; ++c) {
      const Wide z(number(line, 26 + 38 * c, 16), w * number(line, 43 + 38 * c, 16));
      pi.Z[i - 1][c] = pi.Z[c][i - 1] = z;
    }
    const double value = number(line, 26, 16);
    if (!series) join(pi.Y, i, j, line[19] == 'C' ? Wide(0, w * value * 1e-6) : Wide(1 / value));
  }
  return pi;
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
        readPiFile(modelFileOf(body, "80000"), static_cast<std::size_t>(n), ANGULAR60);
    const PiCircuit exact =
        exactPi(corner(SOLVEDATA.first.YMAT, n), corner(SOLVEDATA.first.ZMAT, n), 8e4L);
    EXPECT_LT(distance(pi.Z, exact.Z), 1e-7);
    // couplings stand in the file as capacitances, without their small negative conductance
    EXPECT_LT(distance(susceptance(pi.Y), susceptance(times(0.5L, exact.Y))), 1e-7);
  }
}

TEST(ModelFile, BergeronModesAreThoseOfTheLine) {
  const std::string body = doubleCircuit(bergeronModel("Frequency for Loss Approximation: 3000\n"));
  Numbers in(runLine(body, "50000").files.at("a.cvo"), "\n  6 0");
  for (const double head : {6.0, 0.0, 1.0, 1.0, 60.0, 3000.0, 5e4, 1e-9, 1e-9})
    EXPECT_EQ(in.real(), head);
  solveBothLoops(body, 5e4);
  const SecondLoopStore& T = SOLVEDATA.second;
  double squares[6] = {}; // of the columns of the transformation
  for (int m = 1; m <= 6; ++m) {
    EXPECT_EQ(in.count() * in.count(), m * m); // both nodes
    // a mode's travel time and surge impedance from its propagation constant at 60 Hz
    EXPECT_NEAR(in.real(), 1e3 * 5e4 * T.GAM[m].imag() / ANGULAR60, 1e-12);
    EXPECT_NEAR(in.real(), T.ZSURGE[m].real(), 1e-9);
    const double loss = in.real();
    EXPECT_GT(in.real(), loss); // more at 3000 Hz than at 60 Hz
    for (double& column : squares) column += std::pow(in.real(), 2);
  }
  EXPECT_TRUE(!in.early && in.left() == 0);
  for (const double column : squares) EXPECT_NEAR(column, 1.0, 1e-12);
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

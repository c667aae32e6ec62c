// Model files read back by columns and compared with what the line is.
#include "output/model_file.h"

#include "modal/line_constants.h"
#include "store/rundata.h"
#include "support/dense_functions.h"
#include "support/description.h"
#include "support/scratch.h"
#include "support/solve.h"
#include "support/whole_run.h"

#include <cmath>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <map>
#include <sstream>

using namespace lcp;
using namespace lcp::test;

namespace {

constexpr double ANGULAR60 = 376.99111843077515; // rad/s

std::vector<std::string> fileLines(const std::string& text) {
  std::vector<std::string> all;
  std::istringstream in(text);
  for (std::string l; std::getline(in, l);) all.push_back(l);
  return all;
}

double number(const std::string& line, std::size_t column, std::size_t width) {
  return std::stod(line.substr(column - 1, width));
}

std::string modelFileOf(const std::string& body, const std::string& length) {
  const Scratch scratch;
  scratch.file("a.cvi", description(body));
  const ProgramRun run = runProgram({"/file", "a.cvi", "/length", length}, scratch.path());
  EXPECT_EQ(run.status, 0) << run.console;
  return run.files.at("a.cvo");
}

// One end's shunt matrix and the series matrix of a PI file, read by its columns.
struct PiFile {
  Dense Y, Z;
};

PiFile readPiFile(const std::string& text, std::size_t n, double w) {
  PiFile pi{Dense(n, std::vector<Wide>(n)), Dense(n, std::vector<Wide>(n))};
  bool series = false;
  for (const std::string& line : fileLines(text)) {
    if (line == " TRANSFORMERS:") series = true;
    if (line.size() < 41 || line[1] != 'S') continue; // the receiving end repeats the sending end
    const auto i = static_cast<std::size_t>(number(line, 4, 5)) - 1;
    const auto j = static_cast<std::size_t>(number(line, 13, 5));
    if (series) {
      for (std::size_t c = 0; c <= i; ++c) {
        const Wide z(number(line, 26 + 38 * c, 16), w * number(line, 43 + 38 * c, 16));
        pi.Z[i][c] = pi.Z[c][i] = z;
      }
      continue;
    }
    const double value = number(line, 26, 16);
    const Wide y = line[19] == 'C' ? Wide(0, w * value * 1e-6) : Wide(1 / value, 0);
    pi.Y[i][i] += y;
    if (j > 0) {
      pi.Y[j - 1][j - 1] += y;
      pi.Y[i][j - 1] -= y;
      pi.Y[j - 1][i] -= y;
    }
  }
  return pi;
}

} // namespace

TEST(ModelFile, ThePiFileIsTheExactPiCircuit) {
  const std::string model = "PI Model Options\n{\n}\n";
  for (const auto& [body, n] : {std::pair{singleCircuit(model), 3}, {doubleCircuit(model), 6}}) {
    const double length = 8e4;
    const PiFile pi =
        readPiFile(modelFileOf(body, "80000"), static_cast<std::size_t>(n), ANGULAR60);
    solveFirstLoop(body, length);
    const PiCircuit exact =
        exactPi(corner(SOLVEDATA.first.YMAT, n), corner(SOLVEDATA.first.ZMAT, n), length);
    EXPECT_LT(distance(pi.Z, exact.Z), 1e-7);
    // couplings stand in the file as capacitances, without their small negative conductance
    Dense half = times(0.5L, exact.Y);
    for (auto& row : half) {
      for (Wide& y : row) y = Wide(0, y.imag());
    }
    Dense written = pi.Y;
    for (auto& row : written) {
      for (Wide& y : row) y = Wide(0, y.imag());
    }
    EXPECT_LT(distance(written, half), 1e-7);
  }
}

TEST(ModelFile, BergeronModesAreThoseOfTheLine) {
  const std::string body = doubleCircuit(bergeronModel("Frequency for Loss Approximation: 3000\n"
                                                       "Interpolate Travel Times: 0\n"
                                                       "Infinite Line Length: 1\n"));
  const std::vector<std::string> file = fileLines(modelFileOf(body, "50000"));
  ASSERT_EQ(file.size(), 14U);
  EXPECT_EQ(file[5],
            "  6 0     1          1         60.00000        3000.000        50000.00       "
            "0.1000000E-08   0.1000000E-08 /");
  EXPECT_EQ(file[6], "NOINT");
  EXPECT_EQ(file[7], "INFLENGTH");
  solveBothLoops(body, 5e4);
  for (int k = 1; k <= 6; ++k) {
    const std::string& line = file[static_cast<std::size_t>(k) + 7];
    ASSERT_EQ(line.size(), 13U + 10 * 25) << line;
    EXPECT_EQ(line.substr(0, 13), fmt::format(" {0:5} {0:5} ", k));
    // a mode's travel time and surge impedance from its propagation constant at 60 Hz
    const SecondLoopStore& T = SOLVEDATA.second;
    EXPECT_NEAR(number(line, 15, 24), 1e3 * 5e4 * T.GAM[k].imag() / ANGULAR60, 1e-12);
    EXPECT_NEAR(number(line, 40, 24), T.ZSURGE[k].real(), 1e-9);
    EXPECT_GT(number(line, 90, 24), number(line, 65, 24)); // more loss at 3000 Hz than at 60 Hz
    double column = 0;
    for (int i = 1; i <= 6; ++i) {
      column += std::pow(number(file[static_cast<std::size_t>(i) + 7],
                                115 + 25 * (static_cast<std::size_t>(k) - 1), 24),
                         2);
    }
    EXPECT_NEAR(column, 1.0, 1e-12);
  }
}

TEST(ModelFile, LongRowsGoOnInANewLine) {
  const auto manyConductors = [](int n, const std::string& model) {
    // 120 columns do not hold so many phases: a circuit has twenty
    std::string body = summary(n) + "Line Constants Tower\n{\n";
    for (int first = 1; first <= n; first += 20) {
      const int last = std::min(n, first + 19);
      body += fmt::format("Circuit\n{{\nConductors: {}\nConductor Phase Information: ",
                          last - first + 1);
      for (int i = first; i <= last; ++i) body += fmt::format("{} ", i);
      body += "\nRadius: 0.01\nDCResistance: 0.1\nShuntConductance: 1e-10\n";
      for (int i = first; i <= last; ++i) {
        body += fmt::format("P{} : {} {}\n", i - first + 1, 3.1 * i, 15 + (i * 7) % 11);
      }
      body += "}\n";
    }
    return body + "}\n" + model;
  };
  const std::vector<std::string> pi =
      fileLines(modelFileOf(manyConductors(30, "PI Model Options\n{\n}\n"), "1000"));
  // five rows of more than 25 pairs, each two lines; the last holds 25 and 5 pairs
  const std::string& last = pi.back();
  EXPECT_EQ(last.size(), 5U * 38);
  EXPECT_EQ(last.substr(0, 5), "     ");
  EXPECT_EQ(pi[pi.size() - 2].size(), 20U + 25 * 38);

  for (const auto& [n, perMode, wide] : {std::tuple{35, 1, false}, {36, 1, true}, {40, 2, true}}) {
    const std::vector<std::string> file =
        fileLines(modelFileOf(manyConductors(n, bergeronModel()), "1000"));
    ASSERT_EQ(file.size(), 6U + static_cast<std::size_t>(n * perMode)) << n;
    EXPECT_EQ(file[6].ends_with(" /"), wide) << n;
    if (perMode == 2) {
      EXPECT_EQ(file[7].size(), static_cast<std::size_t>(n + 4 - 40) * 25);
    }
  }
}

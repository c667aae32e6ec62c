// Mode model files read back by columns, and their functions compared with the modes of the line.
#include "output/mode_model_file.h"

#include "modal/second_loop.h"
#include "store/rundata.h"
#include "store/solvedata.h"
#include "support/child.h"
#include "support/description.h"
#include "support/scratch.h"
#include "support/solve.h"
#include "support/whole_run.h"

#include <cmath>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <sstream>

using namespace lcp;
using namespace lcp::test;

namespace {

constexpr double LENGTH = 1e5; // m

std::string modeModel(const std::string& keys = "") {
  return "Frequency Dep. (Mode) Model Options\n{\nWeighting Factor 1: 1\nWeighting Factor 2: 1\n"
         "Weighting Factor 3: 1\n" +
         keys + "}\n";
}

struct Function {
  int lines = 0; // of its block
  Complex constant;
  std::vector<Complex> poles, residues;

  Complex operator()(Complex s) const {
    Complex sum = constant;
    for (std::size_t m = 0; m < poles.size(); ++m) sum += residues[m] / (s - poles[m]);
    return sum;
  }
};

struct ModeRecord {
  double traveltime = 0; // s
  Function surge, attenuation;
  std::vector<Function> row;
};

class ModeFile {
public:
  std::vector<std::string> head;
  std::vector<ModeRecord> modes;

  ModeFile(const std::string& text, int n) {
    std::istringstream in(text);
    for (std::string l; std::getline(in, l);) lines.push_back(l);
    while (lines[at][0] != 'C') head.push_back(lines[at++]);
    for (int m = 1; m <= n; ++m) modes.push_back(mode(m, n));
    EXPECT_EQ(at, lines.size());
  }

private:
  std::vector<std::string> lines;
  std::size_t at = 0;

  const std::string& next() { return lines.at(at++); }

  ModeRecord mode(int m, int n) {
    const std::string stars(44, '*');
    EXPECT_EQ(next(), fmt::format("C {} Mode{:2} Data => {}", stars, m, stars));
    ModeRecord record;
    const std::string nodes = next();
    EXPECT_EQ(nodes.substr(0, 17), fmt::format(" {0:5} {0:5}     ", m));
    EXPECT_EQ(nodes.substr(36), " / Nodes, Travel-Time(mS)");
    record.traveltime = 1e-3 * std::stod(nodes.substr(17, 19));
    EXPECT_EQ(next(), fmt::format("C ** Mode {:2} Surge Impedances => ", m));
    record.surge = function();
    EXPECT_EQ(next(), fmt::format("C ** Mode {:2} Attenuation Constants => ", m));
    record.attenuation = function();
    EXPECT_EQ(next(), fmt::format("C ** Mode {:2} Current Transformation Matrix => ", m));
    for (int r = 1; r <= n; ++r) {
      EXPECT_EQ(next(), fmt::format("C ** Row {:2} => ", r));
      record.row.push_back(function());
    }
    return record;
  }

  // The values of a line, each in 20 columns.
  static std::vector<double> values(const std::string& line) {
    std::vector<double> all;
    EXPECT_EQ(line.size() % 20, 0U) << line;
    for (std::size_t c = 0; c + 20 <= line.size(); c += 20) {
      EXPECT_EQ(line[c], ' ') << line;
      EXPECT_EQ(line[c + 16], 'E') << line;
      all.push_back(std::stod(line.substr(c, 20)));
    }
    return all;
  }

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

  Function function() {
    const std::size_t start = at;
    const std::string first = next();
    EXPECT_EQ(first.substr(0, 1) + first.substr(5, 3), "    ");
    EXPECT_EQ(first.size(), 48U);
    const auto count = static_cast<std::size_t>(std::stoi(first.substr(1, 4)));
    const std::vector<double> constant = values(first.substr(8));
    Function f;
    f.constant = {constant.at(0), constant.at(1)};
    f.poles = numbers(count);
    f.residues = numbers(count);
    f.lines = static_cast<int>(at - start);
    return f;
  }
};

struct Written {
  ModeFile file;
  std::vector<std::string> console;
};

// Writes the file of a line that stands solved.
Written writeSolved(int n) {
  const Scratch scratch;
  const ChildResult child = runChild([&] {
    TextFile file;
    if (!file.open(scratch.file("a.cvo"))) std::abort();
    writeModeModel(file);
    file.close();
  });
  EXPECT_EQ(child.status, 0);
  Written w{ModeFile(contentOf(scratch.file("a.cvo")), n), {}};
  std::istringstream in(child.console);
  for (std::string l; std::getline(in, l);) w.console.push_back(l);
  return w;
}

void solve(const std::string& body) {
  solveBothLoops(body, LENGTH);
  formFitWeights();
}

// The error and the count printed behind that title.
struct Printed {
  double error = -1;
  int count = -1;
};

Printed printed(const Written& w, const std::string& title) {
  Printed p;
  const auto line = std::find(w.console.begin(), w.console.end(), title);
  if (line == w.console.end() || line + 1 == w.console.end()) return p;
  std::istringstream(*(line + 1)) >> p.error >> p.count;
  return p;
}

// What the twelve digits of the file can change at s: little, but where poles nearly coincide their
// residues are large and cancel.
double rounding(const Function& f, Complex s, double delay) {
  double sum = std::abs(f.constant) + std::abs(f(s) * s * delay);
  for (std::size_t m = 0; m < f.poles.size(); ++m) {
    const double term = std::abs(f.residues[m] / (s - f.poles[m]));
    sum += term * (1 + std::abs(f.poles[m] / (s - f.poles[m])));
  }
  return 5e-12 * sum;
}

// The printed error is that of the function in the file, and its poles are those of a real and
// stable one.
void expectFit(const Function& f, const Curve<Complex, MAXFREQ>& F, double delay, Printed p) {
  double deviation = 0, peak = 0, rounded = 0;
  for (int k = 1; k <= SOLVEDATA.grid.NFUSE; ++k) {
    const Complex s(0, SOLVEDATA.grid.WFREQ[k]);
    deviation = std::max(deviation, std::abs(f(s) * std::exp(-s * delay) - F[k]));
    peak = std::max(peak, std::abs(F[k]));
    rounded = std::max(rounded, rounding(f, s, delay));
  }
  EXPECT_NEAR(deviation / peak, p.error, rounded / peak);
  EXPECT_EQ(static_cast<int>(f.poles.size()), p.count);
  EXPECT_EQ(f.constant.imag(), 0);
  for (std::size_t m = 0; m < f.poles.size(); ++m) {
    EXPECT_LE(f.poles[m].real(), 0);
    if (f.poles[m].imag() == 0) {
      EXPECT_EQ(f.residues[m].imag(), 0);
      continue;
    }
    ASSERT_LT(m + 1, f.poles.size());
    EXPECT_EQ(f.poles[m + 1], std::conj(f.poles[m]));
    EXPECT_EQ(f.residues[m + 1], std::conj(f.residues[m]));
    ++m;
  }
}

void expectModes(const Written& w) {
  for (int m = 1; m <= RUNDATA.line.NC; ++m) {
    const ModeRecord& record = w.file.modes[static_cast<std::size_t>(m) - 1];
    expectFit(record.surge, SOLVEDATA.second.ZSURGST.curve(m), 0,
              printed(w, fmt::format("Mode {:2} Surge Impedance:", m)));
    expectFit(record.attenuation, SOLVEDATA.second.HMODE.curve(m), record.traveltime,
              printed(w, fmt::format("Mode {:2} Attenuation Constant:", m)));
    EXPECT_EQ(record.attenuation.constant, Complex(0));
    // all modes travel about as fast as light, the more the loss is taken out
    EXPECT_NEAR(record.traveltime, LENGTH / 2.99792458e8, 0.1 * record.traveltime);
  }
}

} // namespace

TEST(ModeModelFile, HeadAndConsole) {
  solve(singleCircuit(modeModel("Interpolate Travel Times: 0\nInfinite Line Length: 1\n")));
  const Written w = writeSolved(3);
  ASSERT_EQ(w.file.head.size(), 10U);
  EXPECT_EQ(w.file.head[5], "Fre-Dep  3 0                 1          1 /");
  EXPECT_EQ(w.file.head[6], "NOINT");
  EXPECT_EQ(w.file.head[7], "INFLENGTH");
  EXPECT_EQ(w.file.head[8], "! *** Length: .10000E+06 Metres ");
  EXPECT_EQ(w.file.head[9], "! ***  3 Conductors,  Ground Res.: 100.00     Ohm-Metres ");
  ASSERT_EQ(w.console.size(), 14U);
  EXPECT_EQ(w.console[0], " FITTING ERROR                # OF POLES");
  EXPECT_EQ(w.console[1], " -------------                ----------");
  EXPECT_EQ(w.console[2], "Mode  1 Surge Impedance:");
  EXPECT_EQ(w.console[4], "Mode  1 Attenuation Constant:");
  EXPECT_EQ(w.console[12], "Mode  3 Attenuation Constant:");
}

TEST(ModeModelFile, FunctionsAreTheModesOfTheLine) {
  for (const auto& body :
       {singleCircuit(modeModel()), singleCircuit(modeModel(), "Transposed: 1\n"),
        doubleCircuit(modeModel())}) {
    solve(body);
    expectModes(writeSolved(RUNDATA.line.NC));
  }
}

// Without target the counts are the limits.
TEST(ModeModelFile, BlocksHoldSixValuesOnALine) {
  const std::string keys = "Maximum Fitting Error (%) for Surge Impedance: 0\n"
                           "Maximum Fitting Error (%) for Attenuation Constant: 0\n";
  for (const auto& [count, lines] : {std::pair{1, 5}, {6, 5}, {7, 9}, {8, 9}, {12, 9}, {13, 13}}) {
    solve(singleCircuit(
        modeModel(keys + fmt::format("Maximum # of Poles for Surge Impedance Fit: {}\n"
                                     "Maximum # of Poles for Attenuation Constant Fit: {}\n",
                                     count, std::min(count, 8)))));
    const Written w = writeSolved(3);
    expectModes(w);
    for (const ModeRecord& mode : w.file.modes) {
      EXPECT_EQ(mode.surge.lines, lines);
      EXPECT_EQ(static_cast<int>(mode.surge.poles.size()), count);
      EXPECT_EQ(static_cast<int>(mode.attenuation.poles.size()), std::min(count, 8));
    }
  }
}

TEST(ModeModelFile, ConstantTransformationIsThatOfItsStep) {
  SOLVEDATA.second.TISUM = {}; // as at the start of a run: each solve adds to it
  solve(doubleCircuit(modeModel("Frequency to Calculate Constant Transform: 5000\n")));
  const Written w = writeSolved(6);
  const int last = SOLVEDATA.grid.NFREQ;
  EXPECT_NEAR(SOLVEDATA.grid.FREQ[last], 5000, 1e-9);
  for (int m = 1; m <= 6; ++m) {
    for (int r = 1; r <= 6; ++r) {
      const Function& f =
          w.file.modes[static_cast<std::size_t>(m) - 1].row[static_cast<std::size_t>(r) - 1];
      const Complex t = SOLVEDATA.second.TIST(last, m, r);
      EXPECT_EQ(f.lines, 1);
      EXPECT_EQ(f.constant.imag(), 0);
      EXPECT_NEAR(std::fabs(f.constant.real()), std::abs(t), 1e-11);
      double mean = 0;
      for (int k = 1; k <= last; ++k) mean += SOLVEDATA.second.TIST(k, m, r).real() / last;
      EXPECT_GT(f.constant.real() * mean, 0) << m << " " << r;
    }
  }
}

TEST(ModeModelFile, FittedTransformationFollowsTheVectors) {
  solve(singleCircuit(modeModel()));
  RUNDATA.fit.CONSTT = false; // as with a table of Y and Z
  const Written w = writeSolved(3);
  expectModes(w);
  for (int m = 1; m <= 3; ++m) {
    for (int r = 1; r <= 3; ++r) {
      const Printed p = printed(w, fmt::format("Transform Element {:2},{:2}:", m, r));
      EXPECT_TRUE(p.error <= 0.02 || p.count == 20);
      expectFit(w.file.modes[static_cast<std::size_t>(m) - 1].row[static_cast<std::size_t>(r) - 1],
                SOLVEDATA.second.TIST.curve(m, r), 0, p);
    }
  }
}

TEST(ModeModelFile, LengthStepsAreRunsOfTheirOwn) {
  const Scratch scratch;
  for (const char* name : {"a.cvi", "b.cvi"}) {
    scratch.file(name, description(singleCircuit(modeModel())));
  }
  const ProgramRun steps = runProgram(
      {"/file", "a.cvi", "/length", "2e4", "/increment", "8e4", "/steps", "2"}, scratch.path());
  ASSERT_EQ(steps.status, 0) << steps.console;
  for (const auto& [name, length] : {std::pair{"a_001.cvo", "20000"}, {"a_002.cvo", "100000"}}) {
    const ProgramRun single = runProgram({"/file", "b.cvi", "/length", length}, scratch.path());
    EXPECT_TRUE(single.files.at("b.cvo") == steps.files.at(name)) << name;
    EXPECT_EQ(single.files.count("b.out"), 1U);
  }
}

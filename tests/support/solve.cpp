#include "support/solve.h"

#include "base/console.h"
#include "modal/first_loop.h"
#include "modal/frequency_grid.h"
#include "modal/second_loop.h"
#include "store/rundata.h"
#include "store/solvedata.h"
#include "support/description.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace lcp::test {

namespace {

std::string circuit(const char* phases, double x, double y, const char* more) {
  return fmt::format("Circuit\n{{\nConductors: 3\nConductor Phase Information: {}\nRadius: 0.0153\n"
                     "DCResistance: 0.0587\nSag: 7\nShuntConductance: 1e-11\n"
                     "P1 : {} {}\nP2 : {} {}\nP3 : {} {}\n{}}}\n",
                     phases, x, y, x * 1.3, y + 6.5, x * 0.9, y + 13, more);
}

} // namespace

std::string singleCircuit(const std::string& model, const std::string& circuitLines) {
  return summary(3) +
         threePhaseTower(circuitLines, "GroundWires: 1\n{\nDCResistance: 2.8\nRadius: 0.0055\n"
                                       "Sag: 5\nP1 : 0.5 28\n}\n") +
         model;
}

std::string doubleCircuit(const std::string& model) {
  return summary(6) + "Line Constants Tower\n{\n" + circuit("1 2 3", -5.5, 17.5, "") +
         circuit("4 5 6", 5.5, 17.5, "") +
         "GroundWires: 1\n{\nDCResistance: 2.8\nRadius: 0.0055\nSag: 5\nP1 : 0 40\n}\n}\n" + model;
}

std::string manyCircuits(int n, const std::string& model) {
  std::string body = summary(n);
  int node = 1;
  for (int circuits = 0; node <= n; ++circuits) {
    const int tower = circuits / 4, level = circuits % 4 / 2, side = circuits % 2 == 0 ? -1 : 1;
    if (circuits % 4 == 0)
      body += circuits == 0 ? "Line Constants Tower\n{\n" : "}\nLine Constants Tower\n{\n";
    const int last = std::min(node + 2, n);
    body +=
        fmt::format("Circuit\n{{\nConductors: {}\nConductor Phase Information:", last - node + 1);
    for (int i = node; i <= last; ++i) body += fmt::format(" {}", i);
    body += "\nRadius: 0.0153\nDCResistance: 0.0587\nSag: 7\nShuntConductance: 1e-11\n";
    for (int i = node; i <= last; ++i) {
      const int phase = i - node;
      body += fmt::format("P{} : {:.6f} {:.6f}\n", phase + 1,
                          45 * tower + 8 * side + 2.1 * side * (phase - 1) + 0.13 * node,
                          16 + 7 * level + 2.3 * phase + std::fmod(0.17 * node, 3));
    }
    body += "}\n";
    node = last + 1;
  }
  return body + "}\n" + model;
}

std::string manualLineOf(int n, const std::string& keys, const std::string& model) {
  return summary(n) + "Manual Data Entry\n{\n" + keys + "}\n" + model;
}

std::string yzTableOf(int last) {
  const int n = RUNDATA.line.NC;
  const FrequencyStore& A = SOLVEDATA.at;
  std::string text = fmt::format("Y and Z\n{}\n{}\n", last, n);
  for (int k = 1; k <= last; ++k) {
    text += fmt::format("{}\n", SOLVEDATA.grid.FREQ[k]);
    for (int j = 1; j <= n; ++j) {
      for (int i = 1; i <= n; ++i) {
        for (const Complex& x : {A.ZSTORE(k, j, i), A.YSTORE(k, j, i)})
          text += fmt::format("{}\n{}\n", x.real(), x.imag());
      }
    }
  }
  return text;
}

std::string phaseModel(const std::string& keys) {
  return "Frequency Dep. (Phase) Model Options\n{\n" + keys + "}\n";
}

std::string bergeronModel(const std::string& keys) {
  return "Bergeron Line Model Options\n{\n" + keys + "}\n";
}

void solveFirstLoop(const std::string& body, double length) {
  readHere(description(body));
  RUNDATA.run.LINELEN = length;
  SOLVEDATA.first.IDEALT = isIdeallyTransposed();
  layGrid();
  firstFrequencyLoop();
  console::flush();
}

void solveBothLoops(const std::string& body, double length) {
  solveFirstLoop(body, length);
  alignVectors();
  secondFrequencyLoop();
}

} // namespace lcp::test

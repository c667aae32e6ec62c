#include "support/solve.h"

#include "base/console.h"
#include "modal/first_loop.h"
#include "modal/frequency_grid.h"
#include "modal/second_loop.h"
#include "run/methods.h"
#include "store/rundata.h"
#include "store/solvedata.h"
#include "support/description.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <vector>

namespace lcp::test {

namespace {

const std::string TOWER = "Line Constants Tower\n{\n";

// A circuit whose first conductor has this number, and the positions of its conductors.
std::string circuit(int first, const std::vector<std::pair<double, double>>& places,
                    const std::string& lines = "") {
  std::string phases, positions;
  int k = 0;
  for (const auto& [x, y] : places) {
    phases += fmt::format(" {}", first + k++);
    positions += fmt::format("P{} : {:.6f} {:.6f}\n", k, x, y);
  }
  return fmt::format("Circuit\n{{\nConductors: {}\nConductor Phase Information:{}\nRadius: 0.0153\n"
                     "DCResistance: 0.0587\nSag: 7\nShuntConductance: 1e-11\n{}{}}}\n",
                     places.size(), phases, positions, lines);
}

std::string groundWire(double x, double y) {
  return fmt::format("GroundWires: 1\n{{\nDCResistance: 2.8\nRadius: 0.0055\nSag: 5\n"
                     "P1 : {} {}\n}}\n",
                     x, y);
}

} // namespace

std::string singleCircuit(const std::string& model, const std::string& circuitLines) {
  return summary(3) + threePhaseTower(circuitLines, groundWire(0.5, 28)) + model;
}

std::string doubleCircuit(const std::string& model, const std::string& circuitLines) {
  return summary(6) + TOWER + circuit(1, {{-5.5, 17.5}, {-7.15, 24}, {-4.95, 30.5}}, circuitLines) +
         circuit(4, {{5.5, 17.5}, {7.15, 24}, {4.95, 30.5}}, circuitLines) + groundWire(0, 40) +
         "}\n" + model;
}

std::string manyCircuits(int n, const std::string& model) {
  std::string body = summary(n);
  for (int node = 1; node <= n; node += 3) {
    const int circuits = node / 3, tower = circuits / 4, level = circuits % 4 / 2,
              side = circuits % 2 == 0 ? -1 : 1;
    if (circuits % 4 == 0) body += circuits == 0 ? TOWER : "}\n" + TOWER;
    std::vector<std::pair<double, double>> places;
    for (int phase = 0; phase < std::min(3, n + 1 - node); ++phase) {
      places.emplace_back(45 * tower + 8 * side + 2.1 * side * (phase - 1) + 0.13 * node,
                          16 + 7 * level + 2.3 * phase + std::fmod(0.17 * node, 3));
    }
    body += circuit(node, places);
  }
  return body + "}\n" + model;
}

std::string manualLineOf(int n, const std::string& keys, const std::string& model) {
  return summary(n) + "Manual Data Entry\n{\n" + keys + "}\n" + model;
}

std::string phaseModel(const std::string& keys) {
  return "Frequency Dep. (Phase) Model Options\n{\n" + keys + "}\n";
}

std::string modeModel(const std::string& keys) {
  return "Frequency Dep. (Mode) Model Options\n{\n" + EVENWEIGHTS + keys + "}\n";
}

std::string bergeronModel(const std::string& keys) {
  return "Bergeron Line Model Options\n{\n" + keys + "}\n";
}

void solveFirstLoop(const std::string& body, double length) {
  readHere(description(body));
  RUNDATA.run.LINELEN = length;
  SOLVEDATA.first.IDEALT = isIdeallyTransposed();
  layGrid();
  runFirstLoop();
  console::flush();
}

void solveBothLoops(const std::string& body, double length) {
  solveFirstLoop(body, length);
  alignVectors();
  LostModes lost;
  for (int k = 1; k <= SOLVEDATA.grid.NFREQ && RUNDATA.model.needsModes(); ++k)
    takeSecondStep(k, lost);
}

} // namespace lcp::test

// Solves described lines stage by stage, without the rest of the program.
#pragma once

#include "store/rundata.h"
#include "store/solvedata.h"
#include "support/dense_functions.h"

#include <string>

namespace lcp::test {

// Descriptions of lines, with the lines of a model section at the end.
std::string singleCircuit(const std::string& model, const std::string& circuitLines = "");
// Two circuits on one tower, untransposed if these lines of both do not say otherwise.
std::string doubleCircuit(const std::string& model, const std::string& circuitLines = "");

std::string manyCircuits(int n, const std::string& model); // n wires in circuits of three, four to
                                                           // a tower, no two alike

// A line of n conductors with entered data.
std::string manualLineOf(int n, const std::string& keys, const std::string& model);

std::string phaseModel(const std::string& keys = ""); // frequency dependent (phase)
std::string modeModel(const std::string& keys = "");  // ... (mode), all samples of one weight
std::string bergeronModel(const std::string& keys = "");
inline const std::string EVENWEIGHTS =
    "Weighting Factor 1: 1\nWeighting Factor 2: 1\nWeighting Factor 3: 1\n";

// Reads the description, sets up the grid and runs the loops.
void solveFirstLoop(const std::string& body, double length = 1e5);
void solveBothLoops(const std::string& body, double length = 1e5);

// One step of a curve store.
template <class Store> Dense stepOf(const Store& store, int k) {
  static LineMatrix M;
  store.load(k, M, RUNDATA.line.NC);
  return corner(M, RUNDATA.line.NC);
}

} // namespace lcp::test

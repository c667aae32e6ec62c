// Finds the shortest vector that meets linear constraints, given their scalar products.
#pragma once

#include <vector>

namespace lcp {

// A program of n constraints a_i, of which the first `equalities` are equalities and the others
// lower bounds:
//
//   min 1/2 |y|^2    a_i y = b_i, i <= equalities    a_i y >= b_i, i > equalities
//
// Any strictly convex program takes this form with the Cholesky factor of its matrix.
struct LeastVectorProgram {
  int n = 0;
  int equalities = 0;
  std::vector<double> M; // n by n: M_ij = a_i a_j
  std::vector<double> b;
};

// The solution y = sum of multiplier_i a_i; multipliers of bounds are not negative.
struct LeastVector {
  std::vector<double> multiplier;
  int contradicted = 0; // constraints that contradict the others and were left out
};

// Inputs that are not finite give multipliers that are not finite. Allocates its work arrays.
[[nodiscard]] LeastVector leastVector(const LeastVectorProgram& program);

} // namespace lcp

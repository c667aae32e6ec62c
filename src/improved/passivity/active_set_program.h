// The shortest vector that meets linear constraints, for constraints known by their scalar
// products.
#pragma once

#include <vector>

namespace lcp {

// A program of n constraints a_i: its first ones, so many, are equalities, the others bounds from
// below:
//
//   min 1/2 |y|^2    a_i y = b_i, i <= equalities    a_i y >= b_i, i > equalities
//
// Any strictly convex program is one of these behind the Cholesky factor of its matrix.
struct LeastVectorProgram {
  int n = 0;
  int equalities = 0;
  std::vector<double> M; // n by n: M_ij = a_i a_j
  std::vector<double> b;
};

// What solves it: y = sum of multiplier_i a_i, those of the bounds not negative.
struct LeastVector {
  std::vector<double> multiplier;
  int contradicted = 0; // constraints that no y meets beside the others, and are left out
};

// Numbers that are not finite give multipliers that are not. Allocates its work arrays.
[[nodiscard]] LeastVector leastVector(const LeastVectorProgram& program);

} // namespace lcp

// Many bordered systems of one matrix: the Newton steps of its modes.
#pragma once

#include "kernels/matrix_kernels.h"

namespace lcp {

constexpr int BORDERED = LDMAT + 1; // largest order with the border
using BorderedVector = Table<Complex, BORDERED>;

// A matrix A = Q H Q^H of order n, reduced so that a bordered system of it costs about n^2
// operations: H is zero below its first subdiagonal, Q unitary.
struct BorderedMatrix {
  int n;
  LineMatrix A;
  LineMatrix Q;
  LeftFactor fromReduced;   // Q
  LeftFactor toReduced;     // Q^H
  double largest;           // element of A, at least 1: the border has elements 1
  BorderedVector probe;     // right side that tells how near a system is to singular
  double Hre[LDMAT][LDMAT]; // rows of H, real and imaginary parts apart
  double Him[LDMAT][LDMAT];
};

void reduce(BorderedMatrix& M, CConstView A, int n);

// Solves
//
//   | A - l I   -x |
//   |              | d = r,   e_p the row with 1 in column p,
//   |  e_p       0 |
//
// for an A and an x whose elements are about 1. False, and d is of no use, when the system is
// singular: SOLVEJD decides that wherever the reduced form comes near to it.
[[nodiscard]] bool SOLVEBORDERED(BorderedVector& d, const BorderedMatrix& M, Complex l,
                                 const Complex* x, int p, const BorderedVector& r);

} // namespace lcp

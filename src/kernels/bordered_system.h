// Solves the bordered systems of the Newton steps, several modes of one matrix side by side.
#pragma once

#include "kernels/lane_vectors.h"
#include "store/solvedata.h"

namespace lcp {

constexpr int BORDERED = LDMAT + 1; // largest order including the border

// A matrix A = Q H Q^H of order n, reduced so that solving a bordered system with it takes about
// n^2 operations: H is upper Hessenberg, Q unitary.
struct BorderedMatrix {
  int n;
  LineMatrix A;
  LineMatrix Q;
  LeftFactor fromReduced; // Q
  LeftFactor toReduced;   // Q^H
  double largest;         // largest element of A, at least 1 because the border has elements 1
  Table<Complex, BORDERED> probe; // right-hand side that estimates the distance to singularity
  Complex H[LDMAT][LDMAT];        // stored by rows
};

// Reduces A of order n and prepares M for all systems with this matrix.
void reduce(BorderedMatrix& M, CConstView A, int n);

// Each lane in use holds a system
//
//   | A - l I   -x |
//   |              | d = r,   e_p the row with 1 in column p,
//   |  e_p       0 |
//
// where the elements of A and x are of order 1. Unused lanes may hold any numbers.
struct BorderedSystems {
  bool used[LANES];
  ComplexLanes l;
  LaneVectors x;
  int p[LANES];
  LaneVectors r;
};

// Solves the systems. Where solved[c] is false, the system of the lane is singular and d is
// undefined in it; SOLVEJD decides this wherever the reduced form comes close to singular.
void SOLVEBORDERED(LaneVectors& d, bool (&solved)[LANES], const BorderedMatrix& M,
                   const BorderedSystems& S);

} // namespace lcp

// Many bordered systems of one matrix: the Newton steps of its modes, several of them side by side.
#pragma once

#include "kernels/lane_vectors.h"
#include "store/solvedata.h"

namespace lcp {

constexpr int BORDERED = LDMAT + 1; // largest order with the border

// A matrix A = Q H Q^H of order n, reduced so that a bordered system of it costs about n^2
// operations: H is zero below its first subdiagonal, Q unitary.
struct BorderedMatrix {
  int n;
  LineMatrix A;
  LineMatrix Q;
  LeftFactor fromReduced;         // Q
  LeftFactor toReduced;           // Q^H
  double largest;                 // element of A, at least 1: the border has elements 1
  Table<Complex, BORDERED> probe; // right side that tells how near a system is to singular
  Complex H[LDMAT][LDMAT];        // by rows
};

void reduce(BorderedMatrix& M, CConstView A, int n);

// In each lane that is used a system
//
//   | A - l I   -x |
//   |              | d = r,   e_p the row with 1 in column p,
//   |  e_p       0 |
//
// for an A and an x whose elements are about 1. The other lanes hold any numbers.
struct BorderedSystems {
  bool used[LANES];
  ComplexLanes l;
  LaneVectors x;
  int p[LANES];
  LaneVectors r;
};

// Solves them. A lane that is not solved, and of which d is of no use, has a singular system:
// SOLVEJD decides that wherever the reduced form comes near to it.
void SOLVEBORDERED(LaneVectors& d, bool (&solved)[LANES], const BorderedMatrix& M,
                   const BorderedSystems& S);

} // namespace lcp

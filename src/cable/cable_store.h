// Working store of the cable constants: conductor numbering and matrices over all conductors.
//
// Only the corner of all conductors is cleared, filled and summed. Conductors are numbered from the
// core of cable 1 outwards, then cable 2, and so on; the conductor of the pipe is last. All
// matrices are normalised: an impedance Z is stored as Z / (j w L0), and potential coefficients are
// plain logarithms whose inverse is Y / (j w C0).
#pragma once

#include "base/big_store.h"
#include "base/matrix.h"
#include "overhead/transposition.h"
#include "store/capacities.h"

namespace lcp {

using CableMatrix = SquareStore<Complex, LDCABLE>;

struct CableNumbering {
  Table<int, MAXCABLE> CBCUM; // last conductor of cable c
  Table<int, MAXCABLE> inner; // cables inside the pipe, ascending
  int ninner;                 // number of cables inside the pipe
  int pipeRow;                // conductor number of the pipe, 0 if there is none
  int total;                  // number of conductors in total

  int first(int c) const { return c == 1 ? 1 : CBCUM[c - 1] + 1; } // core of cable c
  int last(int c) const { return CBCUM[c]; }                       // its outermost conductor
};

// Order of the conductors after reordering: those of the result, then bundle members, then grounded
// ones. Row k of the new order is row order[k] of the old one.
struct CableOrder {
  Table<int, LDMAT> order;
  Table<int, LDMAT> mainRow; // of a bundle member: new row of its main conductor; else 0
  int equivalents;           // number of conductors of the result
  int kept;                  // ... plus bundle members
};

struct CableStore {
  // Valid for one solve
  CableNumbering numbering;
  TranspositionGroups groups; // circuits of overhead conductors among the cables

  // Valid for one call
  CableOrder order;
  CableMatrix A;  // Z of the cable layers
  CableMatrix B;  // Z of the inside of the pipe
  CableMatrix C;  // Z of the pipe wall
  CableMatrix D;  // Z of the earth return
  CableMatrix Q;  // potential term of the earth return
  CableMatrix ZT; // total Z
  CableMatrix P1; // potential coefficients of the cable insulators
  CableMatrix P2; // ... inside the pipe
  CableMatrix P3; // ... of the outer insulator of the pipe
  CableMatrix PA; // ... of aerial bodies
  CableMatrix PT; // ... total
  CableMatrix YN; // Y: inverse of PT plus conductance
  CableMatrix YR; // real part of Y, while bundles and circuits are processed
  CableMatrix G;  // shunt conductance in S/m, stored as imaginary numbers
};

// Mapped before any variable of an including file is initialised.
inline CableStore& CABLE = bigStore<CableStore>();

} // namespace lcp

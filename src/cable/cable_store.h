// Working store of the cable constants: who is who in the system, and its matrices over all
// conductors.
//
// Only the corner of all conductors is ever cleared, filled and summed. Conductors count from the
// core of cable 1 outwards, then those of cable 2, and so on; the conductor of the pipe comes last.
// All matrices are normalised: an impedance Z stands as Z / (j w L0), and potential coefficients
// are plain logarithms whose inverse is Y / (j w C0).
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
  int ninner;                 // ... how many
  int pipeRow;                // conductor of the pipe, 0 without one
  int total;                  // conductors in all

  int first(int c) const { return c == 1 ? 1 : CBCUM[c - 1] + 1; } // core of cable c
  int last(int c) const { return CBCUM[c]; }                       // its outermost conductor
};

// Who stands in which row once the conductors have been put in order: those that stay alone, then
// the members of bundles, then those that are grounded. Row k of the new order is row order[k] of
// the old one.
struct CableOrder {
  Table<int, LDMAT> order;
  Table<int, LDMAT> mainRow; // of a member: row of its main conductor in the new order; else 0
  int equivalents;           // conductors of the result
  int kept;                  // ... and the members behind them
};

struct CableStore {
  // Of one solve
  CableNumbering numbering;
  TranspositionGroups groups; // circuits of overhead conductors among the cables

  // Of one call
  CableOrder order;
  CableMatrix A;  // Z of the layers of the cables
  CableMatrix B;  // Z of the inside of the pipe
  CableMatrix C;  // Z of the wall of the pipe
  CableMatrix D;  // Z of the earth return
  CableMatrix Q;  // potential term of the earth return
  CableMatrix ZT; // Z in all
  CableMatrix P1; // potential coefficients of the insulators of the cables
  CableMatrix P2; // ... inside the pipe
  CableMatrix P3; // ... of the outer insulator of the pipe
  CableMatrix PA; // ... of aerial bodies
  CableMatrix PT; // ... in all
  CableMatrix YN; // Y, the inverse of PT with the conductance
  CableMatrix YR; // real part of Y on its way through bundles and circuits
  CableMatrix G;  // shunt conductance in S/m, as imaginary numbers
};

// Mapped before anything of a file that includes this is initialised.
inline CableStore& CABLE = bigStore<CableStore>();

} // namespace lcp

// Ideal transposition: averages a matrix over the positions that each conductor of a circuit takes.
#pragma once

#include "base/matrix.h"
#include "store/capacities.h"

namespace lcp {

// Circuits as the averaging needs them: a circuit that is not transposed is split into groups of
// one conductor. Separate from the circuit numbers read, which the next solve starts from.
struct TranspositionGroups {
  int NCGROUP;               // highest group number
  Table<int, LDMAT> CCIRC;   // group of each conductor
  Table<int, LDMAT> CTRANSP; // 1: the conductor is transposed
  Table<int, LDMAT> leader;  // first conductor of the group
  bool transposed;           // at least one conductor is transposed
};

// Takes circuits and transposition of the first n entries of the conductor table and splits them.
void SPLITCIRC(TranspositionGroups& groups, int n);

// Splits the circuits of n conductors given in NCGROUP, CCIRC and CTRANSP of `groups`, and fills
// its other members.
void splitGroups(TranspositionGroups& groups, int n);

// Averages the symmetric n by n matrix M in place over the transposed circuits: self terms over
// each circuit, mutual terms over each pair of circuits. Other elements are unchanged.
void TRANSAV(const TranspositionGroups& groups, CView M, int n);

} // namespace lcp

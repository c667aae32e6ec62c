// Ideal transposition: every conductor of a transposed circuit takes each position in turn over the
// length of the line, so that the mean over the positions stands for each of them.
#pragma once

#include "base/matrix.h"
#include "store/capacities.h"

namespace lcp {

// Circuits as the averaging sees them: a circuit that is not transposed falls apart into groups of
// one conductor. Kept apart from the circuit numbers as read, from which the next solve starts.
struct TranspositionGroups {
  int NCGROUP;               // highest group number
  Table<int, LDMAT> CCIRC;   // group of conductor i
  Table<int, LDMAT> CTRANSP; // 1: it is transposed
  Table<int, LDMAT> leader;  // first conductor of the same group
  bool transposed;           // some conductor is transposed
};

// Takes circuits and transposition of the first n entries of the conductor table, and splits them.
void SPLITCIRC(TranspositionGroups& groups, int n);

// Splits the circuits NCGROUP, CCIRC, CTRANSP of n conductors that stand in groups, and fills the
// rest of it.
void splitGroups(TranspositionGroups& groups, int n);

// Averages the symmetric n by n matrix M over the transposed circuits, in place: self terms over
// each circuit, mutual terms over each pair of circuits. The other elements stay.
void TRANSAV(const TranspositionGroups& groups, CView M, int n);

} // namespace lcp

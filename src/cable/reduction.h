// Reduction of a cable system: grounded conductors leave it, and the sub-conductors of overhead
// bundles follow their main conductors.
#pragma once

#include "cable/cable_store.h"

namespace lcp {

// The order that the grounding of cables and pipe and the bundles of the conductor table ask for.
// Conductor 1 always stays.
void orderCableConductors(const CableNumbering& N, CableOrder& O);

// Circuits and transposition of the conductors of the result, for the averages of TRANSAV.
void cableCircuits(const CableNumbering& N, const CableOrder& O, TranspositionGroups& groups);

// Puts rows and columns of the n by n matrix M into the new order.
void reorder(CView M, const CableOrder& O, int n);

// Folds the members of M, of the order kept, into their main conductors and eliminates them.
void CBBUND(CView M, const CableOrder& O);

} // namespace lcp

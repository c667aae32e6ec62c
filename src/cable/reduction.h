// Reduction of a cable system: eliminates grounded conductors and folds overhead bundles.
#pragma once

#include "cable/cable_store.h"

namespace lcp {

// Determines the order of conductors from the grounding of cables and pipe and from the bundles of
// the conductor table. Conductor 1 always stays.
void orderCableConductors(const CableNumbering& N, CableOrder& O);

// Sets circuits and transposition of the conductors of the result, for the averages of TRANSAV.
void cableCircuits(const CableNumbering& N, const CableOrder& O, TranspositionGroups& groups);

// Permutes rows and columns of the n by n matrix M into the new order.
void reorder(CView M, const CableOrder& O, int n);

// Folds the bundle members of M, which has order O.kept, into their main conductors and eliminates
// them.
void CBBUND(CView M, const CableOrder& O);

} // namespace lcp

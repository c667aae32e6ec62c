// Crossbonded sheaths and transposed cores and layers.
#pragma once

#include "base/matrix.h"
#include "cable/cable_store.h"

namespace lcp {

// Averages Z and Y of a cable system over the three positions that each group of three conductors
// takes along the route. Without any cable in a group both stay as they are, to the last bit.
//   Z, Y  in, out: normalised impedance and admittance over all conductors, before elimination
//   N     numbers of the conductors
// With ISTATUS set it also grounds and eliminates the crossbonded sheaths: it changes CBGLAST and
// CBELIM1 to CBELIM3 of their cables, for good. A group of other than three conductors, or of other
// than three cables in the pipe, ends the run with exit status 1.
void XBOND(CView Z, CView Y, const CableNumbering& N);

} // namespace lcp

// Crossbonded sheaths and transposed cores: averages over the positions of the conductors.
#pragma once

#include "base/matrix.h"
#include "cable/cable_store.h"

namespace lcp {

// Averages Z and Y of a cable system over the three positions that each group of three conductors
// takes along the route. Without any group both stay unchanged, to the last bit.
//   Z, Y  in, out: normalised impedance and admittance over all conductors, before elimination
//   N     conductor numbering
// If ISTATUS is set, it also grounds and eliminates the crossbonded sheaths by changing CBGLAST and
// CBELIM1 to CBELIM3 of their cables permanently. A group that does not have three conductors, or
// three cables in the pipe, ends the run with exit status 1.
void XBOND(CView Z, CView Y, const CableNumbering& N);

} // namespace lcp

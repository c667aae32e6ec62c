// Earth return of a cable system.
#pragma once

#include "base/matrix.h"
#include "cable/cable_store.h"

namespace lcp {

// Earth return between all conductors of the system at the angular frequency w, rad/s, above 0: the
// impedance over j w L0 into D, the potential term of aerial bodies into Q, both over the corner of
// all conductors and symmetric. Conductors of one body share its values; the conductors of the pipe
// and of the cables in it are one body. D holds zeros before. The soil and the formulas are those
// of the run store.
//
// With ISTATUS set, at the first frequency of a solve, a body whose distance from the surface or
// whose radius is not above 0 ends the run. So does a formula without a meaning at the first pair
// that asks for it, and, under the formulas of integration, a pair too far beside each other for
// its height or depth: more than 1e5 times. All three say what is wrong; exit status 1.
void CBEARTH(double w, const CableNumbering& N, CView D, CView Q);

} // namespace lcp

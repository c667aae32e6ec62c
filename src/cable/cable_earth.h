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
// radius leaves it without a finite value ends the run. So does a formula without a meaning at the
// first pair that needs it, and, in the air under the formula of integration, a pair further beside
// each other than 1e5 times its heights. All three say what is wrong; exit status 1. A buried body
// that is not below the surface, and one far beside another, get a line on the error stream.
void CBEARTH(double w, const CableNumbering& N, CView D, CView Q);

} // namespace lcp

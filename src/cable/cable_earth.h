// Earth return of a cable system.
#pragma once

#include "base/matrix.h"
#include "cable/cable_store.h"

namespace lcp {

// Earth return between all conductors of the system at angular frequency w > 0, rad/s: writes the
// impedance divided by j w L0 to D, which must be zero on entry, and the potential term of aerial
// bodies to Q; both symmetric, over all conductors. The conductors of a body share one value; the
// pipe and the cables inside it are one body. Soil and formulas are those of the run store.
//
// If ISTATUS is set, at the first frequency of a solve, the bodies are checked. The run ends with a
// message and exit status 1 for a body whose distance from the surface or radius leaves it without
// a finite value, for an invalid formula at the first pair that needs it, and, for aerial
// integration, for a pair whose horizontal distance exceeds 1e5 times its heights. A buried body
// that is not below the surface, or far beside another, is reported on the error stream.
void CBEARTH(double w, const CableNumbering& N, CView D, CView Q);

} // namespace lcp

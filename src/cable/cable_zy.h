// Series impedance and shunt admittance of a cable system at one frequency.
#pragma once

#include "base/matrix.h"

namespace lcp {

// Computes Z and Y of the ungrounded conductors from the cable table, the pipe and the soil of the
// run store. Overhead conductors among the cables are folded into bundles and averaged over
// transposed circuits.
//   f    in: frequency, Hz, above 0
//   YMAT out: shunt admittance, S/m, NC by NC
//   ZMAT out: series impedance, ohm/m, NC by NC
//   PMAT out: normalised product Yn Zn, NC by NC, with Yn = Y / (j w C0), Zn = Z / (j w L0)
// NC and NCOND are set at every call. If ISTATUS is set, at the first frequency of a solve, it also
// numbers the conductors. More than LDMAT conductors, or a singular system, end the run.
void CBZY(double f, CView YMAT, CView ZMAT, CView PMAT);

} // namespace lcp

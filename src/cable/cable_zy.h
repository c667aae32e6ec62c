// Series impedance and shunt admittance of a cable system at one frequency.
#pragma once

#include "base/matrix.h"

namespace lcp {

// Z and Y of the conductors that are not grounded, from the cable table, the pipe and the soil of
// the run store; overhead conductors among the cables are folded into bundles and averaged over
// transposed circuits.
//   f    frequency, Hz, above 0
//   YMAT out: shunt admittance, S/m, NC by NC
//   ZMAT out: series impedance, ohm/m, NC by NC
//   PMAT out: normalised product Yn Zn, NC by NC, Yn = Y / (j w C0), Zn = Z / (j w L0)
// NC and NCOND are set on every call. With ISTATUS set, at the first frequency of a solve, it also
// numbers the conductors. More conductors than LDMAT, and data without an inverse, end the run.
void CBZY(double f, CView YMAT, CView ZMAT, CView PMAT);

} // namespace lcp

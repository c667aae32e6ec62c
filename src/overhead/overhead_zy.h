// Series impedance and shunt admittance of an overhead line at one frequency.
#pragma once

#include "base/matrix.h"

namespace lcp {

// Z and Y of the equivalent conductors, from the conductor table and the soil of the run store.
//   f    frequency, Hz, above 0
//   YMAT out: shunt admittance, S/m, NC by NC
//   ZMAT out: series impedance, ohm/m, NC by NC
//   PMAT out: normalised product Yn Zn, NC by NC, Yn = Y / (j w C0), Zn = Z / (j w L0)
// With ISTATUS set, at the first frequency of a solve, it also prepares what depends on geometry
// alone; later calls find it in the overhead store. An earth-return formula other than 0 and 2, and
// a conductor without average height or radius, end the run.
void OHZY(double f, CView YMAT, CView ZMAT, CView PMAT);

} // namespace lcp

// Series impedance and shunt admittance of an overhead line at one frequency.
#pragma once

#include "base/matrix.h"

namespace lcp {

// Computes Z and Y of the equivalent conductors from the conductor table and the soil data.
//   f    in: frequency, Hz, above 0
//   YMAT out: shunt admittance, S/m, NC by NC
//   ZMAT out: series impedance, ohm/m, NC by NC
//   PMAT out: normalised product Yn Zn, NC by NC, with Yn = Y / (j w C0), Zn = Z / (j w L0)
// If ISTATUS is set, at the first frequency of a solve, it also prepares what depends only on
// geometry, which later calls take from the overhead store. An earth-return formula other than 0 or
// 2, or a conductor without average height or radius, ends the run.
void OHZY(double f, CView YMAT, CView ZMAT, CView PMAT);

} // namespace lcp

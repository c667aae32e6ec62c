// Series impedance and shunt admittance of a four-wire cable.
//
// The four conductors lie at the corners of a square under a common insulation, polyester tape and
// outer mantle.
#pragma once

#include "base/matrix.h"

namespace lcp {

constexpr int FOURWIRES = 4; // conductors

// Computes Z and Y of the four conductors from the four-wire record and the soil resistivity of the
// run store. Sets NC and NCOND to 4.
//   f    in: frequency, Hz, above 0
//   YMAT out: shunt admittance, S/m, without conductance, 4 by 4
//   ZMAT out: series impedance, ohm/m, 4 by 4
//   PMAT out: product Y Z, not normalised, 1/m^2, 4 by 4
// Conductors with a resistivity below 1e-15 ohm m are lossless. If ISTATUS is set, at the first
// frequency of a solve, a record without area or insulator ends the run with exit status 1, and
// other values that are not positive are reported on the error stream.
void FWZY(double f, CView YMAT, CView ZMAT, CView PMAT);

} // namespace lcp

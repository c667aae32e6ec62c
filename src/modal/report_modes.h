// Modal data at the report frequency.
#pragma once

#include "store/solvedata.h"

namespace lcp {

// Computes, from YMAT, ZMAT and PMAT of SOLVEDATA.first at DISPFREQ, eigenvalues EIG and unit
// vectors TI in the order of LAPACK, YM, ZM, surge impedances ZSURGE and travel times TAUMS,
// checked as in formModeTimes.
void formReportModes();

// The second part of this, from eigenvalues EIG and vectors TI of any length in the order to
// report.
void finishReportModes();

// Travel times, ms, and surge impedances, ohm, from the modal matrices YM and ZM at DISPFREQ. Warns
// of velocities above that of light and of very long travel times; a velocity that is negative or
// not finite ends the run with exit status 1.
void formModeTimes(CConstView YM, CConstView ZM, ModeReals& TAU, ModeComplex& Z0);

// Velocity, m/s, of a mode with travel time tau, ms.
double modeVelocity(double tau);

} // namespace lcp

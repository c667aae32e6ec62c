// Modal data of the report frequency.
#pragma once

#include "store/solvedata.h"

namespace lcp {

// From YMAT, ZMAT, PMAT of SOLVEDATA.first at DISPFREQ: eigenvalues EIG and unit vectors TI in the
// order of LAPACK, YM, ZM, surge impedances ZSURGE and travel times TAUMS, checked as below.
void formReportModes();

// The second half: from eigenvalues EIG and vectors TI of any length in the order to report.
void finishReportModes();

// Travel times, ms, and surge impedances, ohm, of the modal matrices YM and ZM, with DISPFREQ as
// their frequency. Warns of velocities above that of light and of very large travel times; a
// velocity that is negative or no finite number ends the run, exit status 1.
void formModeTimes(CConstView YM, CConstView ZM, ModeReals& TAU, ModeComplex& Z0);

// Velocity of a mode with that travel time, ms, in m/s.
double modeVelocity(double tau);

} // namespace lcp

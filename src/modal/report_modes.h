// Modal data of the report frequency.
#pragma once

namespace lcp {

// From YMAT, ZMAT, PMAT of SOLVEDATA.first at DISPFREQ: eigenvalues EIG and unit vectors TI in the
// order of LAPACK, YM, ZM, surge impedances ZSURGE and travel times TAUMS. Warns of velocities
// above that of light and of very large travel times; a negative velocity ends the run, status 1.
void formReportModes();

// Velocity of mode i from its travel time, m/s.
double modeVelocity(int i);

} // namespace lcp

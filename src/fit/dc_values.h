// Exact values of Yc and H at zero frequency, and what the fits make of them.
#pragma once

#include "store/solvedata.h"

namespace lcp {

// DC correction types of the phase-domain model.
constexpr int DCNONE = 0;
constexpr int DCCONSTRAINED = 1; // the fit is made to meet the DC values
constexpr int DCEXTRAPOLE = 2;   // a real pole of its own takes up the difference behind the fit

// Characteristic admittance YDC (S) and propagation matrix HDC of the line at 1e-6 Hz, from the
// real parts of Y and Z; real, NC by NC. Uses the current matrices of SOLVEDATA.first. A line
// without shunt conductance has none: its product Y Z is singular, and the run ends.
void DCVALUES(RealMatrix& YDC, RealMatrix& HDC);

} // namespace lcp

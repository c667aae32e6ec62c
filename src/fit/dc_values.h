// Exact values of Yc and H at zero frequency.
#pragma once

#include "store/solvedata.h"

namespace lcp {

// Characteristic admittance YDC (S) and propagation matrix HDC of the line at 1e-6 Hz, from the
// real parts of Y and Z; real, NC by NC. Uses the current matrices of SOLVEDATA.first. A line
// without shunt conductance has none: its product Y Z is singular, and the run ends.
void DCVALUES(RealMatrix& YDC, RealMatrix& HDC);

} // namespace lcp

// Exact values of Yc and H at zero frequency.
#pragma once

#include "store/solvedata.h"

namespace lcp {

// DC correction types of the phase-domain model.
constexpr int DCNONE = 0;
constexpr int DCCONSTRAINED = 1; // the fit is constrained to meet the DC values
constexpr int DCEXTRAPOLE = 2;   // an extra real pole takes up the difference after the fit

// Computes the characteristic admittance YDC (S) and the propagation matrix HDC at 1e-6 Hz from the
// real parts of Y and Z; real, NC by NC. Overwrites the current matrices of SOLVEDATA.first. For a
// line without shunt conductance the product Y Z is singular, and the run ends.
void DCVALUES(RealMatrix& YDC, RealMatrix& HDC);

} // namespace lcp

// Detail curves of the line itself: constants, modes, impedances seen at its ends. All at steps of
// the grid.
#pragma once

#include "output/curve_shapes.h"

namespace lcp {

// Series impedance (ohm/m) and shunt admittance (S/m).
void writeConstants(CurveSteps steps);

// Squared propagation constants (1/m^2) of the modes.
void writeEigenvalues(CurveSteps steps);

// Elements of the current transformation as they were followed over frequency.
void writeTransformation(CurveSteps steps);

// Up to three conductors overhead: Z and Y by real and imaginary parts, and the input impedance of
// each mode with the far end shorted and open.
void writeFewConductors(CurveSteps steps);

// Three conductors overhead: voltages of the phases at the sending end for 3 A in the first, with
// the far end shorted and open.
void writeSentVoltages(CurveSteps steps);

} // namespace lcp

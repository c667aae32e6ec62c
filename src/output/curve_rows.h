// Rows of the detail curve files: constants, modes and impedances at the ends of the line; sampled
// and fitted functions of the models.
#pragma once

namespace lcp {

struct CurveSteps {
  int first, last;
  bool empty() const { return last < first; }
};

// ---- the line itself, at steps of the grid

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
// the far end shorted and open. A row a step, in the second frequency loop, whose TIINV it takes.
void openSentVoltages();
void writeSentVoltages(int k);
void closeSentVoltages();

// ---- fits

// Modes: surge impedances (ohm), propagation functions without their delays, and elements of the
// current transformation.
void writeModeFits(CurveSteps steps);

// Sampled and fitted characteristic admittance (S).
void writeAdmittanceFit(CurveSteps steps);

// Sampled and fitted function of each delay group, without the delay.
void writeGroupFits(CurveSteps steps);

// Sampled and fitted propagation matrix.
void writePropagationFit(CurveSteps steps);

// Fitted series impedance (ohm/m).
void writeSeriesFit(CurveSteps steps);

} // namespace lcp

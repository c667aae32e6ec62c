// Detail curves of the fits in the phase domain: those of the phase model, and the series impedance
// of the MFDTD model.
#pragma once

#include "output/curve_shapes.h"

namespace lcp {

// Sampled and fitted characteristic admittance (S).
void writeAdmittanceFit(CurveSteps steps);

// Sampled and fitted function of each delay group, without the delay.
void writeGroupFits(CurveSteps steps);

// Sampled and fitted propagation matrix.
void writePropagationFit(CurveSteps steps);

// Fitted series impedance (ohm/m).
void writeSeriesFit(const ElementCurves& ZFIT, CurveSteps steps);

} // namespace lcp

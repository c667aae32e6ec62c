// Detail curves of the frequency dependent (mode) model: sampled and fitted functions of the modes.
#pragma once

#include "output/curve_shapes.h"

namespace lcp {

// Surge impedances (ohm), propagation functions without their delays, and elements of the current
// transformation.
void writeModeFits(CurveSteps steps);

} // namespace lcp

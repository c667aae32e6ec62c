// Surge impedances of modes, by the default or as Improved Modes has them.
#pragma once

#include "base/matrix.h"

namespace lcp {

// Surge impedance of a mode, ohm, from its elements of the modal matrices and its propagation
// constant, 1/m.
Complex surgeImpedance(Complex YM, Complex ZM, Complex gamma);

} // namespace lcp

// Surge impedances of forward travelling waves, continuous over frequency.
#pragma once

#include "base/matrix.h"

namespace lcp {

// Of a mode with the modal matrices' elements YM and ZM, its squared propagation constant as it was
// followed, and gamma, the root of it or of its conjugate that the model takes.
Complex forwardSurgeImpedance(Complex YM, Complex ZM, Complex square, Complex gamma);

// After secondLoopStep(k) of a fitted model: the surge impedances of step k become those of waves
// that travel forward: ZM / gamma, in value the default's root or its negative, and gamma / YM of
// modes with gain.
void formSurgeImpedancesImproved(int k);

} // namespace lcp

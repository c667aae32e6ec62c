// Surge impedances of waves that travel forward.
#pragma once

namespace lcp {

// After secondLoopStep(k) of a fitted model: the surge impedances of step k become those of waves
// that travel forward, ZM / gamma, in value the default's root or its negative.
void formSurgeImpedancesImproved(int k);

} // namespace lcp

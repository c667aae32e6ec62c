// Surge impedances of forward travelling waves, continuous over frequency.
#pragma once

namespace lcp {

// Call after secondLoopStep(k) of a fitted model: replaces the surge impedances of step k by those
// of forward travelling waves, ZM / gamma, which equal the default roots or their negatives.
void formSurgeImpedancesImproved(int k);

} // namespace lcp

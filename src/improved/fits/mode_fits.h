// The mode model with settled fits and a warning for each missed target.
#pragma once

namespace lcp {

// Like fitModes, with the smallest number of poles that meets the target also between the fit
// points. A function that misses its target gives a warning of one line, and the run ends with exit
// status 2.
void fitModesImproved();

} // namespace lcp

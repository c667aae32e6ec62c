// First frequency loop, and modes at the report's frequency, with modes followed as invariant
// subspaces.
#pragma once

namespace lcp {

// As firstFrequencyLoop, for a line that is not ideally transposed and a model with modes. From the
// second step on the modes are those of the step before, of the constant transform step those of
// KCT; an interval is halved where it is not clear which mode is which. Also chooses PIVOT0, the
// rows by which vectors are turned.
void firstFrequencyLoopImproved();

// As formReportModes, with the modes in the order of the model: that of the grid step nearest to
// DISPFREQ, and turned like it. Of an ideally transposed line that is the order of
// idealTransformation; a model without modes has the order of startSubspaces.
void formReportModesImproved();

} // namespace lcp

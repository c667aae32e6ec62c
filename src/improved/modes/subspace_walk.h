// First frequency loop and report modes with modes followed as invariant subspaces.
#pragma once

namespace lcp {

// Like firstFrequencyLoop, for a line that is not ideally transposed and a model with modes. From
// the second step on, modes take the order of the previous step, those of the
// constant-transformation step the order at KCT. An interval is halved where the assignment is
// ambiguous. Also sets PIVOT0, the rows by which vectors are rotated.
void firstFrequencyLoopImproved();

// Like formReportModes, with the modes in the order of the model: order and rotation of the grid
// step nearest to DISPFREQ, for an ideally transposed line the order of idealTransformation, for a
// model without modes that of startSubspaces.
void formReportModesImproved();

} // namespace lcp

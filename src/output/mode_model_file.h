// The line model file of the frequency-dependent mode model.
#pragma once

#include "base/text_file.h"

namespace lcp {

// Writes the head and, for each mode, the functions in MODEMODEL: travel time (ms), surge impedance
// (ohm), attenuation, and row of the current transformation, each with its poles (rad/s) and
// residues.
void writeModeModel(TextFile& file);

} // namespace lcp

// The model file of the frequency dependent (phase) model.
#pragma once

#include "base/text_file.h"

namespace lcp {

// Writes the head, runs the phase-domain fit, and writes its parameters.
void writePhaseModel(TextFile& file);

} // namespace lcp

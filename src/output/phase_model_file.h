// The model file of the frequency dependent (phase) model.
#pragma once

#include "base/text_file.h"

namespace lcp {

// Writes the head, runs the phase-domain fit and its passivity enforcement, writes the parameters,
// and checks the passivity of a model that was not enforced, as far as these were asked for.
void writePhaseModel(TextFile& file);

} // namespace lcp

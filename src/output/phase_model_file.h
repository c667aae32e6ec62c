// The model file of the frequency-dependent phase model.
#pragma once

#include "base/text_file.h"

namespace lcp {

// Writes the head and the poles and residues of FITMODEL.
void writePhaseModel(TextFile& file);

} // namespace lcp

// Writes the fitted phase-domain model to the line model file.
#pragma once

#include "base/text_file.h"

namespace lcp {

// Appends poles, residues, constants and delays of FITMODEL, one number per line in full double
// precision, a complex number on two lines.
void FITPARMS(TextFile& file);

} // namespace lcp

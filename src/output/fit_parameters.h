// The fitted phase-domain model in the line model file.
#pragma once

#include "base/text_file.h"

namespace lcp {

// Appends the poles, residues, constants and delays of FITMODEL, one number a line in full double
// precision, a complex number as two lines.
void FITPARMS(TextFile& file);

} // namespace lcp

// Keeps the files that a run reads from being overwritten by its own outputs.
#pragma once

#include "run/output_names.h"

namespace lcp {

// Call after reading, before the first solve. If a file that a length step will write is one that
// the run reads, by name or by a link, the run ends with a message and exit status 1 before any
// file is touched. Only a manual output file may also be a model file, since it is read completely
// first.
void guardInputs(BaseName base, int steps);

} // namespace lcp

// The files that a run reads, kept from its own outputs.
#pragma once

#include "run/output_names.h"

namespace lcp {

// Behind the reader, ahead of the first solve: when a file that a length step will write is one
// that the run reads, by its name or by a link, the run ends with a message, exit status 1, and no
// file has been touched. Only a manual output file may be a model file: it is read to its end
// before.
void guardInputs(BaseName base, int steps);

} // namespace lcp

// Names of the files that a run writes.
#pragma once

#include "store/run_groups.h"

namespace lcp {

// Where the extension stands in the output names.
struct BaseName {
  int point = 0; // 1-based position of the extension's point
};

// Sets the kind of system and the bases of FOUTR and FOUTM from FNAME. A name without one of the
// extensions .cvi, .cbi, .dta counts as a line, and its files are named Default.
BaseName chooseBaseName(RunControl& run);

// Writes the extensions of step k into FOUTR and FOUTM: name_003.out and name_003.cvo (.cbo for a
// cable system) with several steps, name.out and name.cvo with one.
void nameOutputs(RunControl& run, BaseName base, int k, int steps);

} // namespace lcp

// Names of the files that a run writes.
#pragma once

#include "store/run_groups.h"

namespace lcp {

// Position of the extension in the output names.
struct BaseName {
  int point = 0; // 1-based position of the extension's point
};

// Sets the kind of system and the bases of FOUTR and FOUTM from FNAME. A name without one of the
// extensions .cvi, .cbi and .dta counts as a line, and its files are named Default.
BaseName chooseBaseName(RunControl& run);

// Puts the extensions of step k into FOUTR and FOUTM: name_003.out and name_003.cvo (.cbo for a
// cable system) if there are several steps, name.out and name.cvo if there is one.
void nameOutputs(RunControl& run, BaseName base, int k, int steps);

} // namespace lcp

// Order reduction of the propagation fit: real poles with a large residue make a time-domain model
// sensitive, and are taken out.
#pragma once

#include "fit/phase_residues.h"

namespace lcp {

// Takes real poles with a large |residue / pole| out of FITMODEL, at most one of each group: the
// last one of the group that took the lead of all ratios looked at so far. DONE, and nothing is
// taken out, when the largest ratio is not above RATIOMAX.
void PRUNEPOLE(double RATIOMAX, bool& DONE);

// Prunes and fits again until no ratio is above RATIOMAX. Prints its tables, and returns the last
// fit.
PhaseFit REDUCEORDER(double RATIOMAX);

} // namespace lcp

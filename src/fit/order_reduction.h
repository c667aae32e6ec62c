// Order reduction of the propagation fit: removes real poles with a large residue.
//
// Such poles make a time-domain model sensitive to rounding.
#pragma once

#include "fit/phase_residues.h"

namespace lcp {

// Removes real poles with a large |residue / pole| from FITMODEL, at most one per group: the last
// one of the group that exceeded all ratios before it. If the largest ratio is at most RATIOMAX,
// removes nothing and sets DONE.
void PRUNEPOLE(double RATIOMAX, bool& DONE);

// Prunes and refits until no ratio is above RATIOMAX. Prints its tables and returns the last fit.
PhaseFit REDUCEORDER(double RATIOMAX);

} // namespace lcp

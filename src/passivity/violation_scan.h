// Scans the nodal admittance for negative eigenvalues, and measures the change of H.
#pragma once

#include "passivity/enforcement_store.h"

namespace lcp {

// Scans the grid with the base or the changed residues. V is, at each frequency, the sum of the
// magnitudes of the eigenvalues of the Hermitian part of the nodal admittance below PEIGTOL, S; of
// the 2 NC eigenvalues only the NC of smallest magnitude are considered. VPOINT gets the peaks of
// V.
void PASSVIOL(double PEIGTOL, Residues which);

// Finds VPOINT from V: its first 100 inner maxima, without plateaus. If there is none, the first
// largest value; no point if V is zero everywhere.
void findPeaks();

// Merges the points of VPOINT into the constraint frequencies, which are descending. Of frequencies
// closer than a tenth of the lower one, the higher is kept. Points beyond 100 entries are dropped.
void PASSLIST();

// Prints the points of VPOINT.
void PASSTAB();

// Largest change of H over the fit frequencies, in percent of the largest element of the fitted H;
// also printed. NaN if an element of H is.
double PASSERR();

} // namespace lcp

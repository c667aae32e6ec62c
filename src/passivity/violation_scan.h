// Where the nodal admittance of the line has negative eigenvalues, and what became of H.
#pragma once

#include "passivity/enforcement_store.h"

namespace lcp {

// Scans the grid with the base or the changed residues. V is, at each frequency, the sum of the
// magnitudes of those eigenvalues of the Hermitian part of the nodal admittance that lie below
// PEIGTOL, S; of the 2 NC eigenvalues the NC of smallest magnitude are looked at. VPOINT gets the
// peaks of V.
void PASSVIOL(double PEIGTOL, Residues which);

// VPOINT from V: its inner maxima, no plateaus, the first 100 of them. Without one the first
// largest value; no point when V is zero all over.
void findPeaks();

// Merges the points of VPOINT into the constraint frequencies: falling, and of frequencies closer
// than a tenth of the lower one the higher. Beyond 100 entries the further points are left out.
void PASSLIST();

// Prints the points of VPOINT.
void PASSTAB();

// Largest change of H over the fit frequencies, in per cent of its largest element as fitted, which
// is printed. NaN when an element of H is.
double PASSERR();

} // namespace lcp

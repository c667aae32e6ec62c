// All modes at one frequency, in the order and in the basis of a reference: another frequency's, or
// none. Modes are followed as invariant subspaces.
#pragma once

#include "improved/modes/equal_modes.h"
#include "store/solvedata.h"

namespace lcp {

// Vectors, one a column, and their inverse.
struct ModeFrame {
  LineMatrix X;
  LineMatrix XINV;
};

// All modes at one frequency, as the library has them.
struct ModeSet {
  ModeComplex L;
  LineMatrix V;    // right vectors
  LineMatrix VINV; // left vectors
  ModeReals KAPPA; // condition numbers of the eigenvalues
  ModeGroups G;
};

// The modes of PMAT in SOLVEDATA.first, n conductors; PMAT stays. Modes that cannot be found end
// the run with a message, exit status 1.
void findModes(ModeSet& M, int n);

// Eigenvalues EIG and vectors TI with TIINV of PMAT in SOLVEDATA.first, n conductors, without a
// reference: by falling distance from a shift between the axes, as the decomposition of the default
// has them, equal modes side by side in their standard basis. Columns as PIVNORM leaves them, and
// its rows in PIVOT.
void startSubspaces(int n);

// The same of the modes M of PMAT in the order and with the basis of equal modes nearest to the
// reference. Returns false when it is not clear which mode is which; the best choice then stands
// all the same.
bool followSubspaces(const ModeFrame& reference, const ModeSet& M, int n);

// Takes TI and TIINV of SOLVEDATA.first as the reference; the same from vectors alone.
void takeFrame(ModeFrame& frame, int n);
void invertFrame(ModeFrame& frame, int n);

} // namespace lcp

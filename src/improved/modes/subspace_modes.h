// All modes at one frequency as invariant subspaces, in the order and basis of a reference
// frequency.
#pragma once

#include "improved/modes/equal_modes.h"
#include "store/solvedata.h"

namespace lcp {

// Eigenvectors as columns, and the inverse matrix.
struct ModeFrame {
  LineMatrix X;
  LineMatrix XINV;
};

// All modes at one frequency, in the order of LAPACK.
struct ModeSet {
  ModeComplex L;
  LineMatrix V;    // right vectors
  LineMatrix VINV; // left vectors
  ModeReals KAPPA; // condition numbers of the eigenvalues
  ModeGroups G;
};

// Computes the modes of PMAT in SOLVEDATA.first, n conductors; PMAT is kept. If the modes cannot be
// found, the run ends with a message and exit status 1.
void findModes(ModeSet& M, int n);

// Sets EIG, TI and TIINV to the modes of PMAT in SOLVEDATA.first, n conductors, without a
// reference: by decreasing distance from a shift off the axes, as in the default decomposition,
// equal modes side by side in their standard basis. Columns are scaled by PIVNORM, whose rows go to
// PIVOT.
void startSubspaces(int n);

// The same for the modes M of PMAT, in the order of the reference and with the basis of equal modes
// nearest to it. Returns false if the assignment is ambiguous; the best one is stored nevertheless.
bool followSubspaces(const ModeFrame& reference, const ModeSet& M, int n);

// takeFrame copies TI and TIINV of SOLVEDATA.first to the reference; invertFrame computes XINV from
// X.
void takeFrame(ModeFrame& frame, int n);
void invertFrame(ModeFrame& frame, int n);

} // namespace lcp

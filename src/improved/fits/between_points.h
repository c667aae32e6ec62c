// Functions of the line at frequencies between the points of the fits, computed directly.
//
// They lie half way, in the logarithm, between neighbouring points, so that errors are seen on a
// grid twice as dense. For phase functions there are more where modes rotate fast relative to each
// other, as a sum of delayed modes can fit at the points alone there, and a few in the decade below
// the band, where nothing else holds a fit.
#pragma once

#include "improved/fits/between_store.h"
#include "improved/fits/smooth_constants.h"

namespace lcp {

// Findings of the sampling.
struct PhaseSampling {
  JumpsOfZ jumps;
  double moved = 0; // largest change of a mode's propagation function by a jump of the largest size
  int lost = 0;     // points at which modes were lost
};

// Each samples between the NFUSE grid points of the solve store, in the same layout and units as
// the second loop. A table of Y and Z says nothing between its rows: NB is then 0. A frequency
// where modes cannot be identified is left out. The current matrices of SOLVEDATA.first are
// overwritten.
PhaseSampling samplePhasesBetween(); // YC, H of smooth constants; corrects HST, YCST
void sampleModesBetween();  // TI, ZSURGE, HMODE; each mode continues those of both neighbours
void sampleSeriesBetween(); // Z

} // namespace lcp

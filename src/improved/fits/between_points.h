// The line's functions at frequencies between the points of the fits, computed directly: half way
// in the logarithm between each two neighbours, so that errors are seen on a grid twice as dense.
// For phase functions there are up to seven where modes turn fast against each other from one point
// to the next: a sum of delayed modes can be right at the points alone there.
#pragma once

#include "improved/fits/between_store.h"
#include "improved/fits/smooth_constants.h"

namespace lcp {

// What sampling found on the way.
struct PhaseSampling {
  JumpsOfZ jumps;
  double moved = 0; // by which jumps like the largest move a mode's propagation, where most
  int lost = 0;     // points at which modes were lost
};

// Each samples between the NFUSE grid points of the solve store, in the places and units of what
// the second loop leaves there. A table of Y and Z says nothing between its rows: NB is 0. A
// frequency where modes cannot be told is left out. The current matrices of SOLVEDATA.first change.
PhaseSampling samplePhasesBetween(); // YC, H of smooth constants; mends HST, YCST of lost modes
void sampleModesBetween();           // TI, ZSURGE, HMODE, each mode that of both neighbours
void sampleSeriesBetween();          // Z

} // namespace lcp

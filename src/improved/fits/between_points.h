// The line's functions at frequencies between the points of the fits, computed directly: half way
// in the logarithm between each two neighbours, so that errors are seen on a grid twice as dense.
// For phase functions there are up to seven where modes turn fast against each other from one point
// to the next: a sum of delayed modes can be right at the points alone there. And at a few
// frequencies in the decade below the band, where nothing else holds a fit.
#pragma once

#include "improved/fits/between_store.h"
#include "improved/fits/smooth_constants.h"

namespace lcp {

struct BetweenStore {
  int NB;          // frequencies between points
  int BELOW;       // behind them, of phase functions, frequencies below the points
  FreqCurve WFREQ; // rad/s

  // Which of these are filled says the routine that sampled last.
  CurveMatrix<Complex, MAXFREQ> YC;            // characteristic admittance of the phases, S
  CurveMatrix<Complex, MAXFREQ> H;             // propagation matrix of the phases
  CurveMatrix<Complex, MAXFREQ> Z;             // series impedance, ohm/m
  CurveMatrix<Complex, MAXFREQ> TI;            // transformation, unit columns
  CurveVector<Complex, LDMAT, MAXFREQ> ZSURGE; // surge impedance of mode i, ohm
  CurveVector<Complex, LDMAT, MAXFREQ> HMODE;  // its propagation function
};

// Mapped before anything of a file that includes this is initialised.
inline BetweenStore& BETWEEN = bigStore<BetweenStore>();

// What sampling found on the way.
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

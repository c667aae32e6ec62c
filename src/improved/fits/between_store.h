// Samples of the line at frequencies between the points of the fits.
#pragma once

#include "base/big_store.h"
#include "store/solvedata.h"

namespace lcp {

struct BetweenStore {
  int NB;          // frequencies between points
  int BELOW;       // after them, for phase functions, frequencies below the points
  FreqCurve WFREQ; // rad/s

  // The sampling routine called last determines which of these are filled.
  CurveMatrix<Complex, MAXFREQ> YC;            // characteristic admittance of the phases, S
  CurveMatrix<Complex, MAXFREQ> H;             // propagation matrix of the phases
  CurveMatrix<Complex, MAXFREQ> Z;             // series impedance, ohm/m
  CurveMatrix<Complex, MAXFREQ> TI;            // transformation, unit columns
  CurveVector<Complex, LDMAT, MAXFREQ> ZSURGE; // surge impedance of mode i, ohm
  CurveVector<Complex, LDMAT, MAXFREQ> HMODE;  // its propagation function
};

// Mapped before any variable of an including file is initialised.
inline BetweenStore& BETWEEN = bigStore<BetweenStore>();

} // namespace lcp

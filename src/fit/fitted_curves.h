// The fitted functions at the grid points, as the fits left them, whatever an enforcement does to
// the residues: what the detail curve files show beside the sampled ones. Only the improved
// enforcement renews them.
#pragma once

#include "base/big_store.h"
#include "store/solvedata.h"

namespace lcp {

struct FittedCurves {
  // The fit whose error is printed: before the symmetry of the model is made exact, and without the
  // extra pole of a DC correction. S
  CurveMatrix<Complex, MAXFREQ> YC;
  CurveMatrix<Complex, MAXFREQ> H; // behind order reduction and DC correction

  // By delay group: the function that its poles were fitted to, without the delay, and its fit.
  CurveVector<Complex, NGMAX, MAXFREQ> GROUP;
  CurveVector<Complex, NGMAX, MAXFREQ> GROUPFIT;
};

// Mapped before anything of a file that includes this is initialised.
inline FittedCurves& FITTED = bigStore<FittedCurves>();

} // namespace lcp

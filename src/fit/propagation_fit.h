// Rational fit of the propagation matrix with delay groups.
#pragma once

#include "store/fitmodel.h"

namespace lcp {

struct PropagationWish {
  double ERRA;                     // largest allowed deviation of an element of H, percent
  int MAXPA;                       // maximum number of poles of a delay group, at most NPMAX
  double RPRATIO;                  // largest allowed |residue / pole| of a real pole
  int DCCORR;                      // DC correction type
  const RealMatrix* HDC = nullptr; // H at zero frequency, for a correction
};

// Fits HST over the fitted grid points of the solve store, with delays and poles from the modes
// (HMODE and VELOC), in attempts with decreasing target until ERRA is met or all groups are at
// their limit. Then reduces the order if a ratio exceeds RPRATIO, and corrects the model at zero
// frequency. Fills NC, NGROUP, TAU, NH, HPOLE and HRES of FITMODEL and prints the fit tables. An
// error above ERRA is printed without a warning.
void HFIT(const PropagationWish& wish);

} // namespace lcp

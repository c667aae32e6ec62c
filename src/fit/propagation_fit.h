// Rational fit of the propagation matrix with delay groups.
#pragma once

#include "store/fitmodel.h"

namespace lcp {

struct PropagationWish {
  double ERRA;    // largest deviation of an element of H that is asked for, per cent
  int MAXPA;      // most poles of a delay group, at most NPMAX
  double RPRATIO; // largest |residue / pole| of a real pole
  int DCCORR;     // DC correction type
  const RealMatrix* HDC = nullptr; // H at zero frequency, for a correction
};

// Fits HST over the fitted grid points of the solve store, the modes HMODE and VELOC giving delays
// and poles, in attempts with falling target until ERRA is met or all groups are at their limit.
// Then reduces the order when a ratio is above RPRATIO, and corrects the model at zero frequency.
// Fills NC, NGROUP, TAU, NH, HPOLE and HRES of FITMODEL and prints the fit tables. An error that
// stays above ERRA is printed as it is, without a warning.
void HFIT(const PropagationWish& wish);

} // namespace lcp

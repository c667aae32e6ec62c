// Integrals of the earth return of aerial cables and pipes.
#pragma once

#include "base/matrix.h"

namespace lcp {

// Dimensionless; NaN if more than 1e8 panels are needed.
struct AerialSums {
  Complex SZ; // for the impedance
  Complex SQ; // for the potential term
};

// Integrals of a pair with horizontal distance X and sum of heights H, in m, both not negative, at
// angular frequency w, rad/s, over the constant soil of the run store.
AerialSums AERIALSUM(double X, double H, double w);

// Discards the kept pairs. Called at the first frequency of a solve, so that only pairs of its own
// geometry take up room; the sums do not depend on it.
void FORGETAERIAL();

} // namespace lcp

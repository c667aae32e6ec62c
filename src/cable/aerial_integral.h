// The integrals of the earth return of aerial bodies.
#pragma once

#include "base/matrix.h"

namespace lcp {

// Dimensionless; no number where H asks for more than 1e8 panels.
struct AerialSums {
  Complex SZ; // of the impedance
  Complex SQ; // of the potential term
};

// Of a pair with the horizontal distance X and the sum of heights H, m, both not negative, at the
// angular frequency w, rad/s, over the constant soil of the run store.
AerialSums AERIALSUM(double X, double H, double w);

// What is kept of the pairs goes. For the first frequency of a solve: only pairs of its own
// geometry then take room. The sums are the same with or without.
void FORGETAERIAL();

} // namespace lcp

// The power that the waves of a model take, as matrices whose sign decides on passivity.
#pragma once

#include "improved/passivity/planar_matrix.h"
#include "improved/passivity/tied_residues.h"

namespace lcp {

// The halves into which equal ends split the nodal admittance, see passivity/nodal_admittance.
enum Half { AGAINST, ALIKE, HALVES };

// The model in the enforcement store, packed for evaluation at many frequencies.
struct PackedModel {
  int n = 0;
  TiedBasis ofH, ofYc;
  std::vector<RealLanes> H, Yc; // a real matrix for each basis function
};

[[nodiscard]] PackedModel packModel();

// H and Yc of a model, and what the waves take of them.
struct WavePower {
  double f = 0;            // Hz
  PlanarMatrix W[HALVES];  // not negative where the half takes power
  PlanarMatrix L[HALVES];  // Cholesky factors
  bool positive[HALVES]{}; // whether there are any
  bool settled = false;    // whatever the phase of the waves
  double size = 0;         // Frobenius norm of Yc, S
};

// The model at one frequency, Hz.
[[nodiscard]] WavePower wavePowerAt(const PackedModel& model, double f);

// Whether half of the line takes power between a and b as well, from the bend in their middle: that
// of the matrix itself, in the measure in which it is the identity there. A matrix that is a
// polynomial of second degree in between is positive when the norm of the bend is below 1.
[[nodiscard]] bool isPositiveBetween(const WavePower& a, const WavePower& middle,
                                     const WavePower& b, Half half);

} // namespace lcp

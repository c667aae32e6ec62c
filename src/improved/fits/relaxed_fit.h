// Vector fitting in its relaxed form, with complex starting poles.
#pragma once

#include "improved/fits/projection.h"

namespace lcp {

// N poles spread in the logarithm from WLO to WHI: pairs with a small real part, and with an odd
// number a real pole at WLO.
void spreadPoles(PoleTable& P, int N, double WLO, double WHI);

// Relocates the N poles P of all targets together, a model with the delay tau, by one pass.
void RELOCATERELAXED(const PoleTargets& T, const PoleFrame& frame, double tau, int N, PoleTable& P);

} // namespace lcp

// Poles and delays moved to where the sum of squared deviations of all elements is least.
//
// Of a model with the poles and delays given, the residues that fit best follow from a linear
// problem. What is left of the samples depends on poles and delays alone, and has derivatives that
// cost little: variable projection, a nonlinear least-squares method, with steps after Levenberg
// and Marquardt.
#pragma once

#include "improved/fits/projection.h"

namespace lcp {

// Moves the poles and, on request, the delays of the set by at most so many steps. Returns the
// root of the mean square that is left, over samples and elements.
double MOVEPOLES(const PoleTargets& T, const PoleFrame& frame, int steps, PoleSet& S);

} // namespace lcp

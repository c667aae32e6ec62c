// The real pole of its own that a DC correction of type 2 adds behind a fit.
#pragma once

#include "store/fitmodel.h"

namespace lcp {

// Where it goes, rad/s: a decade below the fit's lowest frequency. Where the slowest pole of the
// fit stands there or lower, half a decade below that one, so that the two do not work against each
// other.
double dcPole(double slowest);

// Smallest magnitude of N poles; infinite without any.
double slowestOf(const PoleTable& P, int N);

// Warns that the correction of a function is left out: with it the error, a fraction, were err.
void warnOfRefusedCorrection(const char* function, double err);

} // namespace lcp

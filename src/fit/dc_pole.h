// The extra real pole that DC correction type 2 adds after a fit.
#pragma once

#include "store/fitmodel.h"

namespace lcp {

// The pole, rad/s: a decade below the lowest frequency of the fit, or, if the slowest pole of the
// fit is there or lower, half a decade below that pole, so that the two do not compensate each
// other.
double dcPole(double slowest);

// Smallest magnitude of N poles; infinite if there are none.
double slowestOf(const PoleTable& P, int N);

// Warns that the correction of a function is omitted, since the error, a fraction, would be err.
void warnOfRefusedCorrection(const char* function, double err);

} // namespace lcp

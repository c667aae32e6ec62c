// Rational fits of matrices of the phases over settled poles, with errors that also count between
// the points of the fit.
#pragma once

#include "fit/admittance_fit.h"

namespace lcp {

// As YCFIT, for symmetric matrices: the error printed is that of the model as it is written, with
// its symmetry and its DC correction. Needs samplePhasesBetween. A DC correction of type 2 that
// lifts the error above the one asked for is left out with a warning, exit status 2.
void fitAdmittanceImproved(const AdmittanceWish& wish);

// As fitSeriesImpedance.
void fitSeriesImproved();

} // namespace lcp

// Rational fits of matrices of the phases over settled poles, with errors that also count between
// the points of the fit.
#pragma once

namespace lcp {

// As fitAdmittance, for symmetric matrices: the error printed is that of the model as it is
// written, with its symmetry and its DC correction. Samples Yc and H between the points of the fit
// as well, which fitPropagationImproved needs, and warns when modes were lost or Z jumps. A DC
// correction of type 2 that lifts the error above the one asked for is left out with a warning,
// exit status 2.
void fitAdmittanceImproved();

// As fitSeriesImpedance.
void fitSeriesImproved();

} // namespace lcp

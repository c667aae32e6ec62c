// Rational fits of phase matrices over settled poles, with errors also counted between the fit
// points.
#pragma once

namespace lcp {

// Like fitAdmittance, for symmetric matrices. The error printed is that of the model as written,
// including its symmetry and DC correction. Also samples Yc and H between the fit points, which
// fitPropagationImproved needs, and warns of lost modes and jumps of Z. A DC correction of type 2
// that raises the error above the requested one is omitted with a warning, exit status 2.
void fitAdmittanceImproved();

// Like fitSeriesImpedance.
void fitSeriesImproved();

} // namespace lcp

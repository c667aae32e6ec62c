// The fit of the propagation function with settled poles.
#pragma once

#include "fit/propagation_fit.h"

namespace lcp {

// Like HFIT, with these differences. Errors are also counted between the fit points, so
// fitAdmittanceImproved must run first. After the attempt that meets the requested error, groups
// drop the poles that are not needed; if none meets it, the best attempt is used. Order reduction
// keeps a pole whose removal would raise the error above the requested one. A DC correction of type
// 1 is part of all attempts; one of type 2 that raises the error above the requested one is
// omitted. Each miss gives a warning of one line, and the run ends with exit status 2.
void settlePropagation(const PropagationWish& wish);

// The same with the options of the run store.
void fitPropagationImproved();

} // namespace lcp

// The fit of the propagation function with settled poles.
#pragma once

#include "fit/propagation_fit.h"

namespace lcp {

// As HFIT, with these differences. Errors also count between the points of the fit; needs
// fitAdmittanceImproved first. Behind the attempt that meets the wish, groups give up poles that it
// does not need; when none meets it, the best attempt counts. Order reduction takes no pole out
// whose loss would lift the error above the one asked for. A DC correction of type 1 holds in all
// attempts; one of type 2 that lifts the error above the one asked for is left out. What is missed
// is warned of in one line each, and the run ends with exit status 2.
void settlePropagation(const PropagationWish& wish);

// The same with the options of the run store.
void fitPropagationImproved();

} // namespace lcp

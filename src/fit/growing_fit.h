// Fits of one function with a growing number of poles, until the error is small enough.
#pragma once

#include "fit/fit_store.h"
#include "fit/vector_fit.h"

namespace lcp {

// Fits F (NS samples at WFREQ, rad/s, weighted by WFIT) with a constant term and an increasing
// number of poles, until the error ERR is at most TARGET or NMAX poles are reached (at most 100).
// Every count starts from new poles. Prints error and count.
void GROWFIT(int NS, const FreqCurve& WFREQ, const ComplexCurve& F, const FreqCurve& WFIT, int NMAX,
             double TARGET, RationalFit& FIT);

// The same for a propagation function F of a mode with phase velocity V (m/s) over length LEN (m),
// without a constant term: F(s) = exp(-s TAU) sum over m of R[m] / (s - P[m]). Returns TAU (s),
// which is searched within 20 % of the delay from the gain-phase relation.
double DELAYFIT(int NS, const FreqCurve& WFREQ, const ComplexCurve& F, const FreqCurve& V,
                const FreqCurve& WFIT, double LEN, int NMAX, double TARGET, RationalFit& FIT);

} // namespace lcp

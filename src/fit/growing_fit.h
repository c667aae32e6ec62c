// Fits of one function whose pole count grows until the error is small enough.
#pragma once

#include "fit/fit_store.h"
#include "fit/vector_fit.h"

namespace lcp {

// Fits F (NS samples at WFREQ, rad/s, weighted by WFIT) with a constant term: one pole, two poles
// and so on, until the error ERR has fallen to TARGET or NMAX poles are reached (100 at most).
// Every count starts from poles of its own. Prints error and count.
void GROWFIT(int NS, const FreqCurve& WFREQ, const ComplexCurve& F, const FreqCurve& WFIT, int NMAX,
             double TARGET, RationalFit& FIT);

// The same for a propagation function F of a mode with the phase velocity V (m/s) over the length
// LEN (m), without a constant term: F(s) = exp(-s TAU) sum over m of R[m] / (s - P[m]). Returns
// TAU (s), which is searched within 20 % of the delay that the gain-phase relation gives.
double DELAYFIT(int NS, const FreqCurve& WFREQ, const ComplexCurve& F, const FreqCurve& V,
                const FreqCurve& WFIT, double LEN, int NMAX, double TARGET, RationalFit& FIT);

} // namespace lcp

// First delay of a propagation function by Bode's gain-phase relation.
#pragma once

#include "fit/partial_fractions.h"

namespace lcp {

struct BodeDelay {
  double TAU;  // travel time less the phase that the loss alone explains, s
  double CORR; // that difference, below 0 for an attenuating function, s
};

// Delay of a mode with the phase velocity V (m/s) and the propagation function HM over the length
// LEN (m), both at the NS frequencies WFREQ (rad/s, rising). It is taken at the first frequency
// where |HM| has fallen to THRESH, but between the second and the last but one.
BodeDelay BODEDLY(const FreqCurve& V, const ComplexCurve& HM, int NS, const FreqCurve& WFREQ,
                  double LEN, double THRESH);

} // namespace lcp

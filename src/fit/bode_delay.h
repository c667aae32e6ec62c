// First delay of a propagation function from Bode's gain-phase relation.
#pragma once

#include "fit/partial_fractions.h"

namespace lcp {

struct BodeDelay {
  double TAU;  // travel time minus the minimum-phase part, s
  double CORR; // minus the minimum-phase part, negative for an attenuating function, s
};

// Delay of a mode with phase velocity V (m/s) and propagation function HM over length LEN (m), both
// at the NS frequencies WFREQ (rad/s, ascending). It is taken at the first frequency where |HM| has
// fallen to THRESH, limited to the second to last but one.
BodeDelay BODEDLY(const FreqCurve& V, const ComplexCurve& HM, int NS, const FreqCurve& WFREQ,
                  double LEN, double THRESH);

} // namespace lcp

// The modified Bessel function of the second kind by ball arithmetic.
#pragma once

#include "base/matrix.h"

namespace lcp::test {

// exp(z) K_n(z) to full double precision.
Complex scaledBesselK(int n, Complex z);

} // namespace lcp::test

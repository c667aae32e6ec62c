// Exponential integral of a complex argument.
#pragma once

#include "base/matrix.h"

namespace lcp {

// exp(z) E1(z) for z = r exp(j angle), r > 0, to 1e-14 of its magnitude. Angles beyond pi continue
// E1 across its cut, |angle| < 3 pi / 2. Nothing over- or underflows.
Complex EXPE1(double r, double angle);

} // namespace lcp

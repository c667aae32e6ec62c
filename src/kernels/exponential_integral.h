// Exponential integral of a complex argument.
#pragma once

#include "base/matrix.h"

namespace lcp {

// exp(z) E1(z) for z = r exp(j angle), r > 0, to 1e-14 of its magnitude; it neither over- nor
// underflows. Angles beyond pi, up to 3 pi / 2, continue E1 across its cut.
Complex EXPE1(double r, double angle);

} // namespace lcp

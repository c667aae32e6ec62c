// Long-line correction: the per metre matrices of a pi circuit that is exact at its ends.
#pragma once

#include "base/matrix.h"

namespace lcp {

// YLC and ZLC, per metre, are such that a pi circuit of length x ZLC with length x YLC / 2 at each
// end has the terminal behaviour of the distributed line of Y and Z per metre, mode by mode. n by
// n. LLOK is false when a part of a corrected modal value is below 1e-20: they are not shown then.
void LONGCOR(CConstView Y, CConstView Z, double length, CView YLC, CView ZLC, int n, bool& LLOK);

} // namespace lcp

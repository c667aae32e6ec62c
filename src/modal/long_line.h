// Long-line correction: matrices per metre of the equivalent pi circuit, which is exact at its
// ends.
#pragma once

#include "base/matrix.h"

namespace lcp {

// Computes YLC and ZLC, per metre, n by n, such that a pi circuit of length x ZLC with length x YLC
// / 2 at each end has the terminal behaviour of the distributed line with Y and Z per metre, mode
// by mode. LLOK is false if a part of a corrected modal value is below 1e-20; the values are then
// not printed.
void LONGCOR(CConstView Y, CConstView Z, double length, CView YLC, CView ZLC, int n, bool& LLOK);

} // namespace lcp

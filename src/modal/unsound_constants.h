// Names the element of Y or Z that is not a finite number.
#pragma once

#include "base/matrix.h"

namespace lcp {

// Larger elements overflow in their products.
constexpr double BEYOND = 1e150;

// Prints one line on the error stream for the first element of Z, then Y, that is not finite and
// below that size; nothing if there is none.
void noteUnsoundElement(CConstView Y, CConstView Z, int n);

} // namespace lcp

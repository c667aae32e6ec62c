// Names the element of Y or Z that is no finite number.
#pragma once

#include "base/matrix.h"

namespace lcp {

// Elements from this size on overflow in their products.
constexpr double BEYOND = 1e150;

// One line on the error stream: the first element of Z, then of Y, that is no number below that
// size; none when all are.
void noteUnsoundElement(CConstView Y, CConstView Z, int n);

} // namespace lcp

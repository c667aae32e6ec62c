// Potential coefficients of aerial cables and pipes.
#pragma once

#include "cable/cable_store.h"

namespace lcp {

// PA = logarithms of the geometry between the surfaces of aerial bodies and their images in the
// ground, normalised; every conductor of a body has the same. A buried body has none: it sees an
// aerial one through the earth only. The corner of all conductors is written.
void CBPOT(const CableNumbering& N, CView PA);

} // namespace lcp

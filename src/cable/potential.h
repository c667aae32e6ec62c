// Potential coefficients of aerial cables and pipes.
#pragma once

#include "cable/cable_store.h"

namespace lcp {

// PA = normalised logarithms of the geometry between the surfaces of aerial bodies and their images
// in the ground; all conductors of a body have the same value. Buried bodies have none, since they
// couple with aerial ones only through the earth. The elements of all conductors are written.
void CBPOT(const CableNumbering& N, CView PA);

} // namespace lcp

// Shunt conductance of a cable system, as a nodal matrix.
//
// Values are in S/m and stored as imaginary numbers, G = j g: the imaginary part of Y / (j w C0) is
// -Im G / (w C0). The matrix must be zero on entry over all conductors.
#pragma once

#include "cable/cable_store.h"

namespace lcp {

// Conductance of the air around the outermost conductor of each aerial cable.
void CBGAIR(const CableNumbering& N, CView G);

// The same with a conductance g, S/m, in every insulator. An outer insulator in air is in series
// with the air.
void CBGSH(double g, const CableNumbering& N, CView G);

} // namespace lcp

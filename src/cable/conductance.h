// Shunt conductance of a cable system.
//
// Held in S/m as imaginary numbers, G = j g: Y / (j w C0) takes -Im G / (w C0) on its imaginary
// part. The matrix comes cleared over the corner of all conductors.
#pragma once

#include "cable/cable_store.h"

namespace lcp {

// Conductance of the air around the outermost conductor of each aerial cable.
void CBGAIR(const CableNumbering& N, CView G);

// The same with a conductance g, S/m, in every insulator. Where the air lies around an insulator,
// both stand in series.
void CBGSH(double g, const CableNumbering& N, CView G);

} // namespace lcp

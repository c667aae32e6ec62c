// What the layers of a coaxial cable alone give to the matrices of its system: the impedance of its
// conductors with their return outside it, and the potential coefficients of its insulators.
#pragma once

#include "base/matrix.h"

namespace lcp {

// Both write the block of cable c, its core at row and column off + 1, in a matrix whose block
// holds zeros; what is not there is left so. w is the angular frequency, rad/s, above 0. No layer
// is checked: one without a resistivity, permeability, permittivity or radius above 0 has no finite
// block.

// Series impedance over j w L0.
void CBLAYZ(double w, int c, int off, CView A);

// Potential coefficients: the inverse is the admittance over j w C0. A conductor without an
// insulator around it gets no row.
void CBLAYP(int c, int off, CView P, double w);

} // namespace lcp

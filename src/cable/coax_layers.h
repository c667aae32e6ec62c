// Impedances and potential coefficients of the layers of a coaxial cable.
#pragma once

#include "base/matrix.h"

namespace lcp {

// Both write the block of cable c, with its core at row and column off + 1, to a matrix whose block
// is zero on entry; elements without a value stay zero. w is the angular frequency, rad/s, above 0.
// Layers are not checked: a resistivity, permeability, permittivity or radius that is not positive
// gives values that are not finite.

// Series impedance divided by j w L0, with the return outside the cable.
void CBLAYZ(double w, int c, int off, CView A);

// Potential coefficients, whose inverse is the admittance divided by j w C0. A conductor without an
// insulator around it gets no row.
void CBLAYP(int c, int off, CView P, double w);

} // namespace lcp

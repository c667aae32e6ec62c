// Eigenvalues and vectors by LAPACK, behind views and fixed work stores.
#pragma once

#include "store/solvedata.h"

namespace lcp {

// Eigenvalues W and right vectors VR (columns, unit length) of A of order n up to 49, in the order
// in which LAPACK finds them. A is overwritten. A matrix that LAPACK gives up on leaves the
// vectors as they come.
void ZGEEV(CView A, ModeComplex& W, CView VR, int n);

} // namespace lcp

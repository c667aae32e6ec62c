// Sorted eigenvalues and inverses of dense complex matrices for the passivity enforcement.
#pragma once

#include "base/matrix.h"
#include "store/solvedata.h"

namespace lcp {

constexpr int LDNODAL = 2 * LDMAT; // order of a nodal admittance: both ends of the line

using NodalReals = Table<double, LDNODAL>;

// Eigenvalues W of A by ascending magnitude, equal ones in the order in which LAPACK finds them,
// and right eigenvectors VR in the same order, as columns of unit length. n up to 49. If an element
// is not finite, all are NaN.
void ZEIGSORT(CConstView A, ModeComplex& W, CView VR, int n);

// R = inverse of A, n up to 49; R may be A. A singular matrix ends the run with a message and exit
// status 1.
void ZINVERSE(CConstView A, CView R, int n);

} // namespace lcp

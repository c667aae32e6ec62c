// Dense complex eigen solutions and inverses of the passivity enforcement, and the products of its
// sensitivities: LAPACK and BLAS behind views and fixed work stores.
#pragma once

#include "base/matrix.h"
#include "store/solvedata.h"

namespace lcp {

constexpr int LDNODAL = 2 * LDMAT; // order of a nodal admittance: both ends of the line

using NodalReals = Table<double, LDNODAL>;

// Eigenvalues W of A by ascending magnitude, equal ones in the order in which LAPACK finds them,
// and right vectors VR in the same order, one a column, of unit length. n up to 49. A matrix with
// an element that is no finite number has eigenvalues and vectors that are none.
void ZEIGSORT(CConstView A, ModeComplex& W, CView VR, int n);

// The n eigenvalues of the Hermitian matrix A, ascending, n up to 49; only its upper triangle is
// read, and A is overwritten. A matrix with an element that is no finite number has none.
void ZHEEV(CView A, double* W, int n);

// R = inverse of A, n up to 49; R may be A. A singular matrix ends the run with a message, exit
// status 1.
void ZINVERSE(CConstView A, CView R, int n);

// Upper triangle of G = G + S^T S; S has so many rows and columns.
void addNormalMatrix(RView G, RConstView S, int rows, int columns);

// D = Q^T S, m by n, over so many rows of both.
void transposedProduct(RView D, RConstView Q, RConstView S, int rows, int m, int n);

} // namespace lcp

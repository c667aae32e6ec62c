// Factorisations of dense real matrices by LAPACK, behind views. Orders from 1 on; each returns
// LAPACK's status, 0 when it worked out. No element may be other than a finite number.
#pragma once

#include "base/matrix.h"

namespace lcp {

// A = U^T U: U takes the place of the upper triangle of A. A matrix that is not positive definite
// keeps what is not done.
int DPOTRF(RView A, int n);

// A = P L U, with the exchanges of the rows in IPIV(1..n).
int DGETRF(RView A, int n, int* IPIV);

// A becomes its inverse, from what DGETRF left; work takes lwork >= n numbers. A singular one
// stays.
int DGETRI(RView A, int n, const int* IPIV, double* work, int lwork);

// b = inverse of A times b, from what DGETRF left.
int DGETRS(RConstView A, int n, const int* IPIV, double* b);

} // namespace lcp

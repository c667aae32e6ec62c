// LAPACK and BLAS behind views and fixed work stores: nothing is allocated, matrices are as large
// as the capacities say. Least squares stand in a file of their own.
#pragma once

#include "base/matrix.h"
#include "store/solvedata.h"

namespace lcp {

// Complex matrices

// Eigenvalues W and right vectors VR (columns, unit length) of A of order n up to 49, in the order
// in which LAPACK finds them. A is overwritten. A matrix that LAPACK gives up on leaves the
// vectors as they come, and the result is false. LAPACK's back substitution goes by blocks where
// the work numbers that it is given allow it, which shows in the last bits.
enum class BackSubstitution { ByColumns, ByBlocks };
bool ZGEEV(CView A, ModeComplex& W, CView VR, int n, BackSubstitution how);

// The n eigenvalues of the Hermitian matrix A, ascending, n up to 49; only its upper triangle is
// read, and A is overwritten. With an element that is not finite all of them are NaN.
void ZHEEV(CView A, double* W, int n);

// The same with the vectors, of unit length, one a column of A in the order of the eigenvalues.
void ZHEEVECTORS(CView A, double* W, int n);

// A = Q H Q^H, H upper Hessenberg, Q unitary; n up to MAXINV. H overwrites A, and below its
// subdiagonal stands what is not part of it.
void ZGEHRD(CView A, CView Q, int n);

// A = P L U, with the exchanges of the rows in IPIV; false when a pivot is zero. n up to 49.
[[nodiscard]] bool ZGETRF(CView A, int n, ModeInts& IPIV);

// A becomes its inverse, from what ZGETRF left; false when it has none.
[[nodiscard]] bool ZGETRI(CView A, int n, const ModeInts& IPIV);

// Real matrices

// Eigenvalues WR + j WI of A of order n up to NPMAX, in the order in which LAPACK finds them: the
// two of a pair side by side, exact conjugates, positive imaginary part first. A is overwritten.
// With an element that is NaN, and when LAPACK does not find all of them, the real parts are NaN.
void DGEEV(RView A, int n, Table<double, NPMAX>& WR, Table<double, NPMAX>& WI);

// Singular values S, falling, of A (m by n, overwritten) and its singular vectors: U is m by
// min(m, n), VT is min(m, n) by n. m up to LSROWS, n up to MAXCOLUMNS.
void DGESVD(RView A, int m, int n, Table<double, LSROWS>& S, RView U, RView VT);

// Factors of finite matrices of order 1 or more. What cannot be factored is left half done, and
// what is made of it is of no use: look at the outcome.

// A = U^T U: U takes the place of the upper triangle of a positive definite A.
void DPOTRF(RView A, int n);

// A = P L U, with the exchanges of the rows in IPIV(1..n).
void DGETRF(RView A, int n, int* IPIV);

// A becomes its inverse, from what DGETRF left; work takes lwork >= n numbers. A singular one
// stays.
void DGETRI(RView A, int n, const int* IPIV, double* work, int lwork);

// b = inverse of A times b, from what DGETRF left.
void DGETRS(RConstView A, int n, const int* IPIV, double* b);

// Upper triangle of G = G + S^T S; S has so many rows and columns.
void addNormalMatrix(RView G, RConstView S, int rows, int columns);

// D = Q^T S, m by n, over so many rows of both.
void transposedProduct(RView D, RConstView Q, RConstView S, int rows, int m, int n);

} // namespace lcp

// LAPACK and BLAS routines for views, with fixed work arrays.
//
// Nothing is allocated; matrices can be as large as the capacities allow. Least squares are in
// least_squares.h.
#pragma once

#include "base/matrix.h"
#include "store/solvedata.h"

namespace lcp {

// Complex matrices

// Eigenvalues W and right eigenvectors VR (columns of unit length) of A of order n up to 49, in the
// order in which LAPACK finds them. A is overwritten. Returns false if LAPACK does not converge;
// the vectors are then undefined. LAPACK substitutes back by blocks if the work array is large
// enough, which affects the last bits.
enum class BackSubstitution { ByColumns, ByBlocks };
bool ZGEEV(CView A, ModeComplex& W, CView VR, int n, BackSubstitution how);

// The n eigenvalues of the Hermitian matrix A, ascending, n up to 49. Only the upper triangle is
// read, and A is overwritten. If an element is not finite, all eigenvalues are NaN.
void ZHEEV(CView A, double* W, int n);

// The same with eigenvectors: unit columns of A in the order of the eigenvalues.
void ZHEEVECTORS(CView A, double* W, int n);

// A = Q H Q^H with H upper Hessenberg and Q unitary; n up to MAXINV. H overwrites A; the elements
// below its subdiagonal are not part of H.
void ZGEHRD(CView A, CView Q, int n);

// A = P L U with the row exchanges in IPIV; n up to 49. Returns false if a pivot is zero.
[[nodiscard]] bool ZGETRF(CView A, int n, ModeInts& IPIV);

// Replaces A, factored by ZGETRF, by its inverse. Returns false if it is singular.
[[nodiscard]] bool ZGETRI(CView A, int n, const ModeInts& IPIV);

// Real matrices

// Eigenvalues WR + j WI of A of order n up to NPMAX, in the order in which LAPACK finds them. The
// two of a pair are adjacent, exact conjugates, positive imaginary part first. A is overwritten. If
// an element is NaN or LAPACK does not converge, the real parts are NaN.
void DGEEV(RView A, int n, Table<double, NPMAX>& WR, Table<double, NPMAX>& WI);

// Singular values S, descending, of A (m by n, overwritten) and singular vectors: U is m by min(m,
// n), VT is min(m, n) by n. m up to LSROWS, n up to MAXCOLUMNS.
void DGESVD(RView A, int m, int n, Table<double, LSROWS>& S, RView U, RView VT);

// Factorisations of finite matrices of order 1 or more. Failures are not reported: if a matrix
// cannot be factored, the results are meaningless and the caller must check what it computes from
// them.

// A = U^T U: U overwrites the upper triangle of a positive definite A.
void DPOTRF(RView A, int n);

// A = P L U with the row exchanges in IPIV(1..n).
void DGETRF(RView A, int n, int* IPIV);

// Replaces A, factored by DGETRF, by its inverse; work has lwork >= n elements. A singular A is
// left as it is.
void DGETRI(RView A, int n, const int* IPIV, double* work, int lwork);

// b = inverse of A times b, where A was factored by DGETRF.
void DGETRS(RConstView A, int n, const int* IPIV, double* b);

// Upper triangle of G = G + S^T S, with S of size rows by columns.
void addNormalMatrix(RView G, RConstView S, int rows, int columns);

// D = Q^T S, m by n; Q and S have `rows` rows.
void transposedProduct(RView D, RConstView Q, RConstView S, int rows, int m, int n);

} // namespace lcp

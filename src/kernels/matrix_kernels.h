// Kernels for small dense complex matrices: products, scaling of eigenvectors, display clean-up.
//
// Every kernel takes views and the order n, and touches only the leading n by n corner.
#pragma once

#include "base/matrix.h"
#include "store/solvedata.h"

namespace lcp {

// y = A x, each element summed in the order of the columns. y must not be x.
void multiply(Complex* y, CConstView A, const Complex* x, int n);

// C = A B, several columns per sweep, each element summed in order; n up to MAXINV. C must be
// neither A nor B.
void CMATMUL(CView C, CConstView A, CConstView B, int n);

// B = A with columns of unit Euclidean length; a column no longer than 1e-30 stays as it is. B may
// be A.
void COLNORM(CView B, CConstView A, int n);
void RCOLNORM(RView B, RConstView A, int n);

// B = A. B must not be A.
void copyCorner(CView B, CConstView A, int n);

// A = 0, A = A + B, A = A + factor B.
void clear(CView A, int n);
void add(CView A, CConstView B, int n);
void addTimes(CView A, Complex factor, CConstView B, int n);

// Whether all elements, n by n or m by n, are finite.
bool allFinite(CConstView A, int n);
bool allFinite(RConstView A, int m, int n);

// R = Re A.
void REALPT(RView R, CConstView A, int n);

// Divides column j of T by its element of largest modulus and multiplies row j of U by it, so that
// T U is unchanged. P(j) is the row of that element, among equal ones the last. A column whose
// elements do not exceed 1e-30 stays as it is.
void PIVNORM(CView T, CView U, ModeInts& P, int n);

// Rotates each column of T so that its element in row P(j) is real and positive; a column with 0
// there stays as it is.
void COLROT(CView T, const ModeInts& P, int n);

// Sets real and imaginary parts of magnitude up to ZEROTOL to 0, for display.
void ZEROSM(CView A, int n, double ZEROTOL);

} // namespace lcp

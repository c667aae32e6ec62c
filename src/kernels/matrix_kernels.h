// Small dense complex matrices: products, the scale of eigenvectors, display clean-up.
//
// Every kernel takes views and the order n, and touches the n by n corner only.
#pragma once

#include "base/matrix.h"
#include "store/solvedata.h"

namespace lcp {

// y = A x, each element summed in the order of the columns. y must not be x.
void multiply(Complex* y, CConstView A, const Complex* x, int n);

// C = A B, formed by sweeps over several columns, each element summed in order; n up to MAXINV. C
// must be neither A nor B.
void CMATMUL(CView C, CConstView A, CConstView B, int n);

// B = A with columns of unit Euclidean length; a column of length 1e-30 or less stays as it is.
// B may be A.
void COLNORM(CView B, CConstView A, int n);
void RCOLNORM(RView B, RConstView A, int n);

// B = A, the n by n corner. B must not be A.
void copyCorner(CView B, CConstView A, int n);

// The corner of zeros, and A = A + B, A = A + factor B.
void clear(CView A, int n);
void add(CView A, CConstView B, int n);
void addTimes(CView A, Complex factor, CConstView B, int n);

// Whether all elements of the corner, or of the m by n corner, are finite.
bool allFinite(CConstView A, int n);
bool allFinite(RConstView A, int m, int n);

// R = Re A.
void REALPT(RView R, CConstView A, int n);

// Divides column j of T by its element of largest modulus and multiplies row j of U by it, so that
// T U stays unchanged for U the inverse of T. P(j) is the row of that element, the last one among
// equals. A column without an element above 1e-30 stays as it is.
void PIVNORM(CView T, CView U, ModeInts& P, int n);

// Turns each column of T so that its element in row P(j) is real and positive; a column with 0
// there stays as it is.
void COLROT(CView T, const ModeInts& P, int n);

// Sets real and imaginary parts of at most ZEROTOL to 0, for display.
void ZEROSM(CView A, int n, double ZEROTOL);

} // namespace lcp

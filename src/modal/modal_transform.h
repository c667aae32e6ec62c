// Modal matrices of given phase matrices.
#pragma once

#include "store/solvedata.h"

namespace lcp {

// YM = TI^-1 Y TI^-T and ZM = TI^T Z TI, all n by n; no output may be an input.
void formModalMatrices(CView YM, CView ZM, CConstView Y, CConstView Z, CConstView TI,
                       CConstView TIINV, int n);

// Surge impedance of a mode, ohm, from its elements of the modal matrices: the principal root of ZM
// / YM.
Complex surgeImpedance(Complex YM, Complex ZM);

// out = TI diag(d) TIINV; out must not be an input.
void diagonalToPhases(CView out, CConstView TI, const ModeComplex& d, CConstView TIINV, int n);

// Transformation of a balanced line of n conductors: column 1 is constant, column c + 1 has 1 in
// row c, -1 / (n - c) below it and 0 above, all scaled to unit length. The columns are orthogonal:
// TIINV is the transpose.
void balancedTransformation(CView TI, CView TIINV, int n);

// B = transpose of A, n by n; B must not be A.
void transpose(CView B, CConstView A, int n);

// out = T D T^T; out must not be D.
void congruence(CView out, CConstView T, CConstView D, int n);

} // namespace lcp

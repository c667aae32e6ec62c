// Modal matrices of given phase matrices.
#pragma once

#include "store/solvedata.h"

namespace lcp {

// YM = TI^-1 Y TI^-T and ZM = TI^T Z TI, all n by n; the outputs must be none of the inputs.
void formModalMatrices(CView YM, CView ZM, CConstView Y, CConstView Z, CConstView TI,
                       CConstView TIINV, int n);

// Surge impedance of a mode, ohm, from its elements of the modal matrices: the principal root of
// ZM / YM.
Complex surgeImpedance(Complex YM, Complex ZM);

// out = TI diag(d) TIINV; out must be none of the inputs.
void diagonalToPhases(CView out, CConstView TI, const ModeComplex& d, CConstView TIINV, int n);

// The transformation of a balanced line of n conductors: column 1 all ones, column c + 1 with 1 in
// row c, -1 / (n - c) below it and 0 above, all of unit length. The columns are orthogonal: TIINV
// is the transpose.
void balancedTransformation(CView TI, CView TIINV, int n);

// B = transpose of A, n by n; B must not be A.
void transpose(CView B, CConstView A, int n);

// out = T D T^T; out must not be D.
void congruence(CView out, CConstView T, CConstView D, int n);

} // namespace lcp

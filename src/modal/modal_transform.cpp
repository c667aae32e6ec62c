#include "modal/modal_transform.h"

#include "kernels/matrix_kernels.h"
#include "store/solvedata.h"

namespace lcp {

namespace {

LineMatrix turned;  // a transposed matrix
LineMatrix product; // intermediate result

} // namespace

void transpose(CView B, CConstView A, int n) {
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) B(i, j) = A(j, i);
  }
}

void balancedTransformation(CView TI, CView TIINV, int n) {
  for (int i = 1; i <= n; ++i) {
    for (int c = 1; c <= n; ++c) TI(i, c) = 0.0;
    TI(i, 1) = 1.0;
    for (int c = 2; c <= i; ++c) TI(i, c) = -1.0 / (n - c + 1);
    if (i < n) TI(i, i + 1) = 1.0;
  }
  COLNORM(TI, TI, n);
  transpose(TIINV, TI, n);
}

Complex surgeImpedance(Complex YM, Complex ZM) { return std::sqrt(ZM / YM); }

void diagonalToPhases(CView out, CConstView TI, const ModeComplex& d, CConstView TIINV, int n) {
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) product(i, j) = TI(i, j) * d[j];
  }
  CMATMUL(out, product, TIINV, n);
}

void congruence(CView out, CConstView T, CConstView D, int n) {
  transpose(turned, T, n);
  CMATMUL(product, T, D, n);
  CMATMUL(out, product, turned, n);
}

void formModalMatrices(CView YM, CView ZM, CConstView Y, CConstView Z, CConstView TI,
                       CConstView TIINV, int n) {
  congruence(YM, TIINV, Y, n);
  transpose(turned, TI, n);
  CMATMUL(product, turned, Z, n);
  CMATMUL(ZM, product, TI, n);
}

} // namespace lcp

// With G and R the real parts of Y and Z at a frequency that counts as zero, and G R = T diag(l)
// T^-1:
//
//   gamma_i = sqrt(l_i),  Yc(0) = (T diag(gamma) T^-1)^-1 G,  H(0) = T diag(exp(-gamma_i l)) T^-1
#include "fit/dc_values.h"

#include "kernels/eigen_package.h"
#include "kernels/inversion.h"
#include "kernels/matrix_kernels.h"
#include "modal/first_loop.h"
#include "modal/line_constants.h"
#include "modal/modal_transform.h"
#include "store/rundata.h"

#include <cmath>

namespace lcp {

namespace {

constexpr double DCFREQUENCY = 1e-6; // Hz

LineMatrix product, phases;

void dropImaginaryParts(LineMatrix& A, int n) {
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) A(i, j) = A(i, j).real();
  }
}

// Modes of the product by a full solution; their order does not matter here.
void solveModes(int n) {
  FirstLoopStore& S = SOLVEDATA.first;
  if (S.IDEALT) {
    idealTransformation();
    idealEigenvalues(S.EIG, product, n);
    return;
  }
  ModeInts pivot;
  VALVC(S.EIG, S.TIINV, S.TI, product, n);
  PIVNORM(S.TI, S.TIINV, pivot, n);
  INVCJD(S.TIINV, S.TI, n);
}

} // namespace

void DCVALUES(RealMatrix& YDC, RealMatrix& HDC) {
  FirstLoopStore& S = SOLVEDATA.first;
  const int n = RUNDATA.line.NC;
  constantsAt(DCFREQUENCY);
  dropImaginaryParts(S.YMAT, n);
  dropImaginaryParts(S.ZMAT, n);
  CMATMUL(product, S.YMAT, S.ZMAT, n);
  solveModes(n);
  ModeComplex gamma, h;
  for (int i = 1; i <= n; ++i) {
    gamma[i] = std::sqrt(S.EIG[i]);
    h[i] = std::exp(-gamma[i] * RUNDATA.run.LINELEN);
  }
  diagonalToPhases(phases, S.TI, h, S.TIINV, n);
  REALPT(HDC, phases, n);
  diagonalToPhases(phases, S.TI, gamma, S.TIINV, n);
  INVCJD(phases, phases, n);
  CMATMUL(product, phases, S.YMAT, n);
  REALPT(YDC, product, n);
}

} // namespace lcp

// With Y Z = T L T^-1 and g_k = sqrt(l_k), u_k = g_k length:
//
//   ZMM_kk = ZM_kk sinh(u_k) / u_k,  YMM_kk = YM_kk tanh(u_k / 2) / (u_k / 2)
//   YLC = T YMM T^T,  ZLC = T^-T ZMM T^-1
//
// in the convention YM = T^-1 Y T^-T, ZM = T^T Z T. The off-diagonal elements of the modal
// matrices, which are rounding errors if all eigenvalues differ, are left unchanged.
#include "modal/long_line.h"

#include "kernels/eigen_package.h"
#include "kernels/hyperbolic.h"
#include "kernels/inversion.h"
#include "kernels/matrix_kernels.h"
#include "modal/modal_transform.h"
#include "store/solvedata.h"

#include <cmath>
#include <cstring>

namespace lcp {

namespace {

constexpr double NOTSHOWN = 1e-20;

ModeComplex eigenvalues;
LineMatrix T, Ti, TiT, YMM, ZMM, product;

// The product of the last decomposition and its order; 0 if there is none.
LineMatrix decomposed;
int decomposedOrder = 0;

bool sameBits(CConstView A, CConstView B, int n) {
  const std::size_t bytes = static_cast<std::size_t>(n) * sizeof(Complex);
  for (int j = 1; j <= n; ++j) {
    if (std::memcmp(A.column(j), B.column(j), bytes) != 0) return false;
  }
  return true;
}

// Eigenvalues of Y Z, unit vectors T and their inverse. They are kept, since model, report and all
// length steps use the same frequency.
void decompose(CConstView Y, CConstView Z, int n) {
  CMATMUL(product, Y, Z, n);
  if (n == decomposedOrder && sameBits(product, decomposed, n)) return;
  copyCorner(decomposed, product, n);
  VALVC(eigenvalues, Ti, T, product, n);
  COLNORM(T, T, n);
  const bool good = INVCHECKED(Ti, T, n) && settledVectors();
  decomposedOrder = good ? n : 0;
}

bool canBeShown(Complex z) { return z.real() >= NOTSHOWN && z.imag() >= NOTSHOWN; }

// f / u; both functions tend to their argument at 0, for a mode without shunt admittance.
Complex quotient(Complex f, Complex u) { return u == 0.0 ? 1.0 : f / u; }

} // namespace

void LONGCOR(CConstView Y, CConstView Z, double length, CView YLC, CView ZLC, int n, bool& LLOK) {
  decompose(Y, Z, n);
  formModalMatrices(YMM, ZMM, Y, Z, T, Ti, n);
  LLOK = true;
  for (int k = 1; k <= n; ++k) {
    const Complex u = std::sqrt(eigenvalues[k]) * length;
    ZMM(k, k) *= quotient(CSINH(u), u);
    YMM(k, k) *= quotient(CTANH(u / 2.0), u / 2.0);
    LLOK = LLOK && canBeShown(ZMM(k, k)) && canBeShown(YMM(k, k));
  }
  congruence(YLC, T, YMM, n);
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) TiT(i, j) = Ti(j, i);
  }
  congruence(ZLC, TiT, ZMM, n);
}

} // namespace lcp

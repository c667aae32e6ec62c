// Between rows k - 1 and k, with x = (f - f_k-1) / (f_k - f_k-1):
//
//   X = X_k-1 + (X_k - X_k-1) x
//
// and, with w = 2 pi f, as for a computed line:
//
//   Yn = Y / (j w C0),  Zn = Z / (j w L0),  P = Yn Zn
#include "modal/yz_interp.h"

#include "base/constants.h"
#include "kernels/matrix_kernels.h"
#include "store/rundata.h"
#include "store/yz_table.h"

#include <cmath>

namespace lcp {

namespace {

constexpr int TAKEROW = 0;
constexpr int BETWEENROWS = 1;

LineMatrix Yn, Zn;

// 1 at row k, and if both rows have the same frequency.
double wayToRow(int k, double f) {
  const double from = YZTABLE.FTABLE[k - 1];
  const double span = YZTABLE.FTABLE[k] - from;
  return span != 0.0 ? (f - from) / span : 1.0;
}

// An element beyond the order of the table is 0.
Complex element(CurveMatrix<Complex, MAXFREQ>& A, int i, int j, int k, double x) {
  if (i > YZTABLE.order || j > YZTABLE.order) return 0.0;
  const auto& X = A.curve(i, j);
  return x == 1.0 ? X[k] : X[k - 1] + (X[k] - X[k - 1]) * x;
}

} // namespace

void YZINTERP(double f, CView Y, CView Z, CView P, int flag, int k) {
  const int n = RUNDATA.line.NC;
  const double w = TWOPI * f;
  const double x = flag == BETWEENROWS && k > 1 ? wayToRow(k, f) : 1.0;
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) {
      Y(i, j) = element(YZTABLE.YTABLE, i, j, k, x);
      Z(i, j) = element(YZTABLE.ZTABLE, i, j, k, x);
      Yn(i, j) = Y(i, j) / Complex(0.0, w * C0);
      Zn(i, j) = Z(i, j) / Complex(0.0, w * L0);
    }
  }
  CMATMUL(P, Yn, Zn, n);
}

void tableConstants(double f, CView Y, CView Z, CView P) {
  const auto& F = YZTABLE.FTABLE;
  const int last = YZTABLE.rows;
  for (int k = 2; k <= last; ++k) {
    if ((F[k - 1] - f) * (F[k] - f) > 0.0) continue;
    YZINTERP(f, Y, Z, P, BETWEENROWS, k);
    return;
  }
  const bool atFirst = std::fabs(F[1] - f) <= std::fabs(F[last] - f);
  YZINTERP(f, Y, Z, P, TAKEROW, atFirst ? 1 : last);
}

} // namespace lcp

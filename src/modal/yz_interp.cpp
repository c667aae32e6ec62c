// Between the rows k - 1 and k, at the fraction x = (f - f_k-1) / (f_k - f_k-1) of the way:
//
//   X = X_k-1 + (X_k - X_k-1) x
//
// and with w = 2 pi f, as for a computed line:
//
//   Yn = Y / (j w C0),  Zn = Z / (j w L0),  P = Yn Zn
#include "modal/yz_interp.h"

#include "base/constants.h"
#include "kernels/matrix_kernels.h"
#include "store/rundata.h"
#include "store/yz_table.h"

namespace lcp {

namespace {

constexpr int TAKEROW = 0;
constexpr int BETWEENROWS = 1;

LineMatrix Yn, Zn;

// 1 at row k, and where the two rows stand at one frequency.
double wayToRow(int k, double f) {
  const double from = YZTABLE.FTABLE[k - 1];
  const double span = YZTABLE.FTABLE[k] - from;
  return span != 0.0 ? (f - from) / span : 1.0;
}

Complex element(const Curve<Complex, MAXFREQ>& X, int k, double x) {
  return x == 1.0 ? X[k] : X[k - 1] + (X[k] - X[k - 1]) * x;
}

} // namespace

void YZINTERP(double f, CView Y, CView Z, CView P, int flag, int k) {
  const int n = RUNDATA.line.NC;
  const double w = TWOPI * f;
  const double x = flag == BETWEENROWS && k > 1 ? wayToRow(k, f) : 1.0;
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) {
      Y(i, j) = element(YZTABLE.YTABLE.curve(i, j), k, x);
      Z(i, j) = element(YZTABLE.ZTABLE.curve(i, j), k, x);
      Yn(i, j) = Y(i, j) / Complex(0.0, w * C0);
      Zn(i, j) = Z(i, j) / Complex(0.0, w * L0);
    }
  }
  CMATMUL(P, Yn, Zn, n);
}

void tableConstants(double f, CView Y, CView Z, CView P) {
  const auto& F = YZTABLE.FTABLE;
  int k = 1;
  while (k < YZTABLE.rows && F[k] < f) ++k;
  const bool inside = F[1] <= f && f <= F[YZTABLE.rows];
  YZINTERP(f, Y, Z, P, inside ? BETWEENROWS : TAKEROW, k);
}

} // namespace lcp

#include "passivity/dense_algebra.h"

#include "base/console.h"
#include "base/solve_error.h"
#include "kernels/lapack.h"
#include "kernels/matrix_kernels.h"

#include <algorithm>
#include <limits>

namespace lcp {

namespace {

void fillNaN(Complex* z, int n) {
  std::fill_n(z, n, Complex(std::numeric_limits<double>::quiet_NaN(), 0));
}

} // namespace

void ZEIGSORT(CConstView A, ModeComplex& W, CView VR, int n) {
  static LineMatrix schur, unsorted;
  static ModeComplex found;
  if (!allFinite(A, n)) {
    fillNaN(W.data(), n);
    for (int j = 1; j <= n; ++j) fillNaN(VR.column(j), n);
    return;
  }
  copyCorner(schur, A, n);
  ZGEEV(schur, found, unsorted, n, BackSubstitution::ByBlocks);
  ModeInts order;
  for (int j = 1; j <= n; ++j) order[j] = j;
  std::stable_sort(order.data(), order.data() + n,
                   [](int a, int b) { return std::abs(found[a]) < std::abs(found[b]); });
  for (int j = 1; j <= n; ++j) {
    W[j] = found[order[j]];
    std::copy_n(unsorted.view().column(order[j]), n, VR.column(j));
  }
}

namespace {

[[noreturn]] void endInversion(const char* words) {
  console::openStars();
  console::line(words);
  stopInStars();
}

} // namespace

void ZINVERSE(CConstView A, CView R, int n) {
  static ModeInts pivots;
  if (A.first != R.first) copyCorner(R, A, n);
  if (!ZGETRF(R, n, pivots)) endInversion("Matrix is numerically singular!");
  if (!ZGETRI(R, n, pivots)) endInversion("Matrix inversion failed!");
}

} // namespace lcp

// The sums of a panel stay in registers over a whole sweep,
//
//   Re y(i) = Re y(i) + (Re a(i,j) Re x(j) - Im a(i,j) Im x(j))
//   Im y(i) = Im y(i) + (Im a(i,j) Re x(j) + Re a(i,j) Im x(j))   for j = 1, 2, ... n
//
// with the matrix element copied to all lanes. This rounds like the complex product.
#include "kernels/lane_vectors.h"

#include <algorithm>
#include <cmath>

namespace lcp {

namespace {

// The elements of y that belong to one panel, from n columns.
void multiplyPanel(ComplexLanes* y, const double* a, const ComplexLanes* x, int n) {
  Lanes re[PANELROWS] = {}, im[PANELROWS] = {};
  for (int j = 0; j < n; ++j, a += 2 * PANELROWS) {
    for (int i = 0; i < PANELROWS; ++i) {
      re[i] += a[i] * x[j].re - a[PANELROWS + i] * x[j].im;
      im[i] += a[PANELROWS + i] * x[j].re + a[i] * x[j].im;
    }
  }
  for (int i = 0; i < PANELROWS; ++i) y[i] = {re[i], im[i]};
}

// Packs the parts of PANELROWS elements of a column of which `left` remain.
void packColumn(double* __restrict a, const Complex* z, int left) {
  if (left >= PANELROWS) {
    for (int i = 0; i < PANELROWS; ++i) {
      a[i] = z[i].real();
      a[PANELROWS + i] = z[i].imag();
    }
    return;
  }
  for (int i = 0; i < PANELROWS; ++i) {
    a[i] = i < left ? z[i].real() : 0.0;
    a[PANELROWS + i] = i < left ? z[i].imag() : 0.0;
  }
}

} // namespace

LCP_WIDTHS("avx2") void prepare(LeftFactor& F, CConstView A, int n) {
  checkIndex(n, MAXINV);
  F.n = n;
  double* a = F.panels;
  for (int first = 1; first <= n; first += PANELROWS) {
    for (int j = 1; j <= n; ++j, a += 2 * PANELROWS)
      packColumn(a, A.column(j) + first - 1, n + 1 - first);
  }
}

LCP_WIDTHS("avx2") void multiply(LaneVectors& y, const LeftFactor& F, const LaneVectors& x) {
  const double* a = F.panels;
  for (int first = 0; first < F.n; first += PANELROWS, a += 2 * PANELROWS * F.n)
    multiplyPanel(y.elements + first, a, x.elements, F.n);
}

LCP_WIDTHS("avx2") void sumOfSquares(double (&sums)[LANES], const LaneVectors& x, int n) {
  std::fill_n(sums, LANES, 0.0);
  for (int i = 1; i <= n; ++i) {
    const Lanes squares = x[i].re * x[i].re + x[i].im * x[i].im;
    for (int c = 0; c < LANES; ++c) sums[c] += squares[c];
  }
}

LCP_WIDTHS("avx2") void sumOfModuli(double (&sums)[LANES], const LaneVectors& x, int n) {
  std::fill_n(sums, LANES, 0.0);
  for (int i = 1; i <= n; ++i) {
    const Lanes squares = x[i].re * x[i].re + x[i].im * x[i].im;
    for (int c = 0; c < LANES; ++c) sums[c] += std::sqrt(squares[c]);
  }
}

void takeColumns(LaneVectors& x, CConstView A, int j, int count, int n) {
  for (int i = 1; i <= n; ++i) {
    for (int c = 0; c < LANES; ++c) x[i].set(c, c < count ? A(i, j + c) : 0.0);
  }
}

void putColumns(CView A, int j, const LaneVectors& x, int count, int n) {
  for (int c = 0; c < count; ++c) x.getLane(c, A.column(j + c), n);
}

} // namespace lcp

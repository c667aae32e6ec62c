#include "improved/passivity/planar_matrix.h"

#include <algorithm>
#include <cmath>

namespace lcp {

namespace {

constexpr int BLOCK = 4; // lanes whose sums stay in registers

double sumOf(const Lanes& a) { return (a[0] + a[1]) + (a[2] + a[3]); }

// So many lanes of a column of A B, from the row lane first on.
template <int N>
inline void productLanes(PlanarMatrix& C, const PlanarMatrix& A, const PlanarMatrix& B, int first,
                         int c) {
  StoredLanes sum[N] = {};
  for (int k = 1; k <= A.order(); ++k) {
    const StoredLanes* a = A.column(k) + first;
    const Complex b = B(k, c);
    const double re = b.real(), im = b.imag();
    for (int l = 0; l < N; ++l) {
      sum[l].re += a[l].re * re - a[l].im * im;
      sum[l].im += a[l].re * im + a[l].im * re;
    }
  }
  std::copy(sum, sum + N, C.column(c) + first);
}

// A column's lanes from first on, less z times those of column k of L.
inline void subtractColumn(StoredLanes* x, const PlanarMatrix& L, int k, Complex z, int first) {
  const double re = z.real(), im = z.imag();
  const StoredLanes* a = L.column(k);
  for (int l = first; l < L.columnLanes(); ++l) {
    x[l].re -= a[l].re * re - a[l].im * im;
    x[l].im -= a[l].re * im + a[l].im * re;
  }
}

// So many lanes of the sum of weighted matrices.
template <std::size_t N>
inline void weightedLanes(StoredLanes* F, const RealLanes* x, std::size_t lanes,
                          const std::vector<Complex>& phi) {
  StoredLanes sum[N] = {};
  for (std::size_t k = 0; k < phi.size(); ++k) {
    const double re = phi[k].real(), im = phi[k].imag();
    for (std::size_t l = 0; l < N; ++l) {
      sum[l].re += x[k * lanes + l].x * re;
      sum[l].im += x[k * lanes + l].x * im;
    }
  }
  std::copy(sum, sum + N, F);
}

} // namespace

void PlanarMatrix::copyTo(CView A) const {
  for (int c = 1; c <= n; ++c) {
    for (int r = 1; r <= n; ++r) A(r, c) = (*this)(r, c);
  }
}

LCP_WIDTHS("avx2")
void multiply(PlanarMatrix& C, const PlanarMatrix& A, const PlanarMatrix& B) {
  for (int c = 1; c <= A.order(); ++c) {
    int l = 0;
    for (; l + BLOCK <= A.columnLanes(); l += BLOCK) productLanes<BLOCK>(C, A, B, l, c);
    for (; l < A.columnLanes(); ++l) productLanes<1>(C, A, B, l, c);
  }
}

void adjoint(PlanarMatrix& B, const PlanarMatrix& A) {
  for (int c = 1; c <= A.order(); ++c) {
    for (int r = 1; r <= A.order(); ++r) B.set(r, c, std::conj(A(c, r)));
  }
}

double normOf(const PlanarMatrix& A) {
  Lanes sum{};
  const StoredLanes* a = A.column(1);
  for (std::size_t l = 0; l < A.allLanes(); ++l) sum += a[l].re * a[l].re + a[l].im * a[l].im;
  return std::sqrt(sumOf(sum));
}

LCP_WIDTHS("avx2")
bool factorise(PlanarMatrix& L, const PlanarMatrix& A, double shift) {
  const int n = A.order(), lanes = A.columnLanes();
  for (int j = 1; j <= n; ++j) {
    const int first = (j - 1) / LANES;
    StoredLanes* x = L.column(j);
    std::copy(A.column(j) + first, A.column(j) + lanes, x + first);
    for (int k = 1; k < j; ++k) subtractColumn(x, L, k, std::conj(L(j, k)), first);
    const double square = L(j, j).real() + shift;
    if (!(square > 0 && std::isfinite(square))) return false;
    const double root = std::sqrt(square);
    for (int l = first; l < lanes; ++l) x[l] = x[l] / root;
    for (int r = first * LANES + 1; r < j; ++r) L.set(r, j, 0);
    L.set(j, j, root);
  }
  return true;
}

LCP_WIDTHS("avx2")
void solveLower(const PlanarMatrix& L, PlanarMatrix& B) {
  for (int c = 1; c <= B.order(); ++c) {
    for (int k = 1; k <= L.order(); ++k) {
      const Complex x = B(k, c) / L(k, k).real();
      if (x == 0.0) continue;
      subtractColumn(B.column(c), L, k, x, (k - 1) / LANES);
      B.set(k, c, x);
    }
  }
}

LCP_WIDTHS("avx2")
void addWeighted(PlanarMatrix& F, const std::vector<RealLanes>& x,
                 const std::vector<Complex>& phi) {
  const std::size_t lanes = F.allLanes();
  std::size_t l = 0;
  for (; l + BLOCK <= lanes; l += BLOCK)
    weightedLanes<BLOCK>(F.column(1) + l, x.data() + l, lanes, phi);
  for (; l < lanes; ++l) weightedLanes<1>(F.column(1) + l, x.data() + l, lanes, phi);
}

} // namespace lcp

#include "improved/fits/right_angles.h"

#include "base/register_widths.h"

#include <algorithm>
#include <cmath>

namespace lcp {

namespace {

constexpr int SWEEP = 2 * LANES;  // numbers of a column that a sweep takes at once
constexpr int TOGETHER = 4;       // columns
constexpr double SPANNED = 1e-13; // of its length that is left of a column that others span

// sums[c] = q . column c, in a fixed order.
template <int C>
void dots(const double* q, const double* a, std::ptrdiff_t ld, int n, double* sums) {
  Lanes s[C][2] = {};
  for (int k = 0; k < n; k += SWEEP) {
    for (int c = 0; c < C; ++c) {
      const double* x = a + c * ld + k;
      s[c][0] += Lanes{q[k], q[k + 1], q[k + 2], q[k + 3]} * Lanes{x[0], x[1], x[2], x[3]};
      s[c][1] += Lanes{q[k + 4], q[k + 5], q[k + 6], q[k + 7]} * Lanes{x[4], x[5], x[6], x[7]};
    }
  }
  for (int c = 0; c < C; ++c) {
    const Lanes sum = s[c][0] + s[c][1];
    sums[c] = (sum[0] + sum[1]) + (sum[2] + sum[3]);
  }
}

template <int C>
void subtract(const double* q, double* a, std::ptrdiff_t ld, int n, const double* factors) {
  for (int k = 0; k < n; ++k) {
    for (int c = 0; c < C; ++c) a[c * ld + k] -= factors[c] * q[k];
  }
}

template <int C> void takeOut(const double* q, double* a, std::ptrdiff_t ld, int n, double* parts) {
  dots<C>(q, a, ld, n, parts);
  subtract<C>(q, a, ld, n, parts);
}

// Takes column j out of the columns first to last; parts[i] is what the i-th of them had of it.
LCP_WIDTHS("avx2")
void takeColumnOut(SampleColumns& A, int j, int first, int last, double* parts) {
  const double* q = A.column(j);
  int c = first;
  for (; c + TOGETHER - 1 <= last; c += TOGETHER, parts += TOGETHER)
    takeOut<TOGETHER>(q, A.column(c), A.ld, A.ld, parts);
  for (; c <= last; ++c, ++parts) takeOut<1>(q, A.column(c), A.ld, A.ld, parts);
}

LCP_WIDTHS("avx2") double lengthOf(SampleColumns& A, int c) {
  double square = 0;
  dots<1>(A.column(c), A.column(c), A.ld, A.ld, &square);
  return std::sqrt(square);
}

void scale(SampleColumns& A, int c, double factor) {
  double* a = A.column(c);
  for (int k = 0; k < A.ld; ++k) a[k] *= factor;
}

} // namespace

void SampleColumns::lay(int NS, int columns) {
  ld = (2 * NS + SWEEP - 1) / SWEEP * SWEEP;
  double* all = numbers.room(static_cast<std::size_t>(ld) * static_cast<std::size_t>(columns));
  for (int c = 0; c < columns; ++c) std::fill(all + c * ld + 2 * NS, all + (c + 1) * ld, 0.0);
}

void bringToRightAngles(SampleColumns& A, int pivots, int all, RView R) {
  for (int j = 1; j <= pivots; ++j) R(j, j) = lengthOf(A, j);
  for (int j = 1; j <= pivots; ++j) {
    const double length = lengthOf(A, j);
    const bool spanned = !(length > SPANNED * R(j, j));
    scale(A, j, spanned ? 0.0 : 1 / length);
    R(j, j) = spanned ? 0.0 : length;
    if (j < all) takeColumnOut(A, j, j + 1, all, &R(j + 1, j));
  }
}

void takePivotsOut(SampleColumns& A, int pivots, int first, int last, RView R) {
  for (int j = 1; j <= pivots; ++j) takeColumnOut(A, j, first, last, &R(first, j));
}

void solveTriangle(RConstView R, int pivots, int c, double* x) {
  for (int j = pivots; j >= 1; --j) {
    double sum = R(c, j);
    for (int m = j + 1; m <= pivots; ++m) sum -= R(m, j) * x[m - 1];
    x[j - 1] = R(j, j) == 0 ? 0.0 : sum / R(j, j);
  }
}

LCP_WIDTHS("avx2")
void formProducts(SampleColumns& A, int a1, int a2, int b1, int b2, RView P) {
  double sums[TOGETHER];
  for (int b = b1; b <= b2; ++b) {
    for (int a = a1; a <= a2; a += TOGETHER) {
      const int count = std::min(TOGETHER, a2 - a + 1);
      if (count == TOGETHER) {
        dots<TOGETHER>(A.column(b), A.column(a), A.ld, A.ld, sums);
      } else {
        for (int c = 0; c < count; ++c) dots<1>(A.column(b), A.column(a + c), A.ld, A.ld, sums + c);
      }
      std::copy_n(sums, count, &P(a - a1 + 1, b - b1 + 1));
    }
  }
}

bool solvePositive(RView M, const double* d, double* x, int n) {
  for (int j = 1; j <= n; ++j) {
    M(j, j) += d[j - 1];
    for (int k = 1; k < j; ++k) {
      const double f = M(j, k);
      for (int i = j; i <= n; ++i) M(i, j) -= f * M(i, k);
    }
    if (!(M(j, j) > 0)) return false;
    const double root = std::sqrt(M(j, j));
    for (int i = j; i <= n; ++i) M(i, j) /= root;
  }
  for (int j = 1; j <= n; ++j) {
    x[j - 1] /= M(j, j);
    for (int i = j + 1; i <= n; ++i) x[i - 1] -= M(i, j) * x[j - 1];
  }
  for (int j = n; j >= 1; --j) {
    for (int i = j + 1; i <= n; ++i) x[j - 1] -= M(i, j) * x[i - 1];
    x[j - 1] /= M(j, j);
  }
  return true;
}

} // namespace lcp

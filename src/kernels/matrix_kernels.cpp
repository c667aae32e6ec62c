#include "kernels/matrix_kernels.h"

#include "base/finite.h"
#include "kernels/hyperbolic.h"
#include "kernels/lane_vectors.h"

#include <algorithm>
#include <cmath>
#include <complex>

namespace lcp {

namespace {

constexpr double NOLENGTH = 1e-30; // shorter columns and smaller elements are not scaled

const double* parts(const Complex* z) { return reinterpret_cast<const double*>(z); }

extended squared(double x) { return static_cast<extended>(x) * x; }
extended squared(Complex z) { return squared(z.real()) + squared(z.imag()); }

template <class T> void unitColumns(View<T> B, View<const T> A, int n) {
  for (int j = 1; j <= n; ++j) {
    extended sum = 0;
    for (int i = 1; i <= n; ++i) sum += squared(A(i, j));
    const double length = static_cast<double>(std::sqrt(sum));
    const double factor = length > NOLENGTH ? 1.0 / length : 1.0;
    for (int i = 1; i <= n; ++i) B(i, j) = A(i, j) * factor;
  }
}

double withoutTrace(double x, double tolerance) { return std::fabs(x) <= tolerance ? 0.0 : x; }

} // namespace

void multiply(Complex* y, CConstView A, const Complex* x, int n) {
  std::fill_n(y, n, Complex(0));
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) y[i - 1] += A(i, j) * x[j - 1];
  }
}

void CMATMUL(CView C, CConstView A, CConstView B, int n) {
  static LeftFactor F;
  static LaneVectors x, y;
  prepare(F, A, n);
  for (int j = 1; j <= n; j += LANES) {
    const int count = std::min(LANES, n + 1 - j);
    takeColumns(x, B, j, count, n);
    multiply(y, F, x);
    putColumns(C, j, y, count, n);
  }
}

void COLNORM(CView B, CConstView A, int n) { unitColumns(B, A, n); }

void RCOLNORM(RView B, RConstView A, int n) { unitColumns(B, A, n); }

void copyCorner(CView B, CConstView A, int n) {
  for (int j = 1; j <= n; ++j) std::copy_n(A.column(j), n, B.column(j));
}

void clear(CView A, int n) {
  for (int j = 1; j <= n; ++j) std::fill_n(A.column(j), n, Complex(0));
}

void add(CView A, CConstView B, int n) {
  for (int j = 1; j <= n; ++j) {
    Complex* a = A.column(j);
    const Complex* b = B.column(j);
    for (int i = 0; i < n; ++i) a[i] += b[i];
  }
}

void addTimes(CView A, Complex factor, CConstView B, int n) {
  for (int j = 1; j <= n; ++j) {
    Complex* a = A.column(j);
    const Complex* b = B.column(j);
    for (int i = 0; i < n; ++i) a[i] += factor * b[i];
  }
}

bool allFinite(CConstView A, int n) {
  for (int j = 1; j <= n; ++j) {
    if (!allFinite(parts(A.column(j)), 2 * n)) return false;
  }
  return true;
}

bool allFinite(RConstView A, int m, int n) {
  for (int j = 1; j <= n; ++j) {
    if (!allFinite(A.column(j), m)) return false;
  }
  return true;
}

void REALPT(RView R, CConstView A, int n) {
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) R(i, j) = A(i, j).real();
  }
}

void PIVNORM(CView T, CView U, ModeInts& P, int n) {
  for (int j = 1; j <= n; ++j) {
    P[j] = 1;
    for (int i = 1; i <= n; ++i) {
      if (std::abs(T(P[j], j)) <= std::abs(T(i, j))) P[j] = i;
    }
    const Complex b = T(P[j], j);
    if (L1MAG(b) <= NOLENGTH) continue;
    for (int i = 1; i <= n; ++i) T(i, j) /= b;
    T(P[j], j) = 1.0; // the complex quotient rounds
    for (int i = 1; i <= n; ++i) U(j, i) *= b;
  }
}

void COLROT(CView T, const ModeInts& P, int n) {
  for (int j = 1; j <= n; ++j) {
    const Complex x = T(P[j], j);
    if (x == 0.0) continue;
    const Complex turn = std::abs(x) / x;
    for (int i = 1; i <= n; ++i) T(i, j) *= turn;
  }
}

void ZEROSM(CView A, int n, double ZEROTOL) {
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i)
      A(i, j) = {withoutTrace(A(i, j).real(), ZEROTOL), withoutTrace(A(i, j).imag(), ZEROTOL)};
  }
}

} // namespace lcp

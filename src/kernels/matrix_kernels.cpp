// A complex multiple of a column, y = y + a b, is with y, a as sequences of real and imaginary
// parts
//
//   y = y + a Re b + (j a) Im b
//
// two real multiples without any exchange of parts, and rounds as the complex product does. The
// columns j a are formed once for a whole matrix.
#include "kernels/matrix_kernels.h"

#include "base/finite.h"
#include "kernels/hyperbolic.h"

#include <algorithm>
#include <cmath>
#include <complex>

namespace lcp {

namespace {

constexpr double NOLENGTH = 1e-30; // columns and elements up to this are left unscaled

// Numbers behind each other in a column of a left factor of order n.
constexpr std::ptrdiff_t width(int n) { return 2 * static_cast<std::ptrdiff_t>(n); }

double* parts(Complex* z) { return reinterpret_cast<double*>(z); }
const double* parts(const Complex* z) { return reinterpret_cast<const double*>(z); }

// y = y + (columns j and j + 1 of the factor) (x1, x2), w numbers.
void addTwoColumns(double* __restrict y, const double* a, const double* ja, Complex x1, Complex x2,
                   std::ptrdiff_t w) {
  const double r1 = x1.real(), i1 = x1.imag(), r2 = x2.real(), i2 = x2.imag();
  for (std::ptrdiff_t i = 0; i < w; ++i)
    y[i] = (y[i] + (a[i] * r1 + ja[i] * i1)) + (a[w + i] * r2 + ja[w + i] * i2);
}

void addColumn(double* __restrict y, const double* a, const double* ja, Complex x,
               std::ptrdiff_t w) {
  const double re = x.real(), im = x.imag();
  for (std::ptrdiff_t i = 0; i < w; ++i) y[i] += a[i] * re + ja[i] * im;
}

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

void prepare(LeftFactor& F, CConstView A, int n) {
  checkIndex(n, MAXINV);
  F.n = n;
  double* a = F.columns;
  double* ja = F.turned;
  for (int j = 1; j <= n; ++j) {
    const double* from = parts(A.column(j));
    for (int i = 0; i < n; ++i) {
      a[2 * i] = from[2 * i];
      a[2 * i + 1] = from[2 * i + 1];
      ja[2 * i] = -from[2 * i + 1];
      ja[2 * i + 1] = from[2 * i];
    }
    a += width(n);
    ja += width(n);
  }
}

void multiply(Complex* y, const LeftFactor& F, const Complex* x) {
  const std::ptrdiff_t w = width(F.n);
  double* sum = parts(y);
  std::fill_n(sum, w, 0.0);
  int j = 0;
  for (; j + 1 < F.n; j += 2)
    addTwoColumns(sum, F.columns + j * w, F.turned + j * w, x[j], x[j + 1], w);
  if (j < F.n) addColumn(sum, F.columns + j * w, F.turned + j * w, x[j], w);
}

void CMATMUL(CView C, CConstView A, CConstView B, int n) {
  static LeftFactor F;
  prepare(F, A, n);
  for (int j = 1; j <= n; ++j) multiply(C.column(j), F, B.column(j));
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

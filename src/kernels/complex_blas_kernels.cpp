// The complex BLAS routines that dominate the time of eigenvalues and reductions; they replace
// those of the reference BLAS in the statically linked reference LAPACK:
//
//   ZGEMV   y = beta y + alpha A x,  beta y + alpha A^T x  or  beta y + alpha A^H x
//   ZGERC   A = A + alpha x y^H
//
// A is m by n in column order with leading dimension lda. Every result has the bits of the
// reference routines: sums run in the same order and complex products round in the same way. Four
// lanes hold two complex numbers; with z' for z with its parts exchanged,
//
//   z t = z (Re t, Re t) + z' (-Im t, Im t)        z* t = z (Re t, -Re t) + z' (Im t, Im t)
//
// Arguments are not checked: LAPACK is the only caller.
#include "base/register_widths.h"

#include <complex>
#include <cstddef>

namespace {

using Complex = std::complex<double>;
using lcp::Lanes;

// Two complex numbers as stored in memory.
using Pair = double __attribute__((vector_size(sizeof(Lanes)), aligned(alignof(double))));

// One complex number.
using Number = double __attribute__((vector_size(sizeof(Complex)), aligned(alignof(double))));

constexpr int COLUMNS = 4; // columns per sweep

// The two real factors that represent multiplication by a complex number t.
struct Factor {
  Lanes straight, crossed;

  Factor() = default;
  explicit Factor(Complex t, bool conjugate = false) {
    const double re = t.real(), im = t.imag();
    straight = Lanes{re, conjugate ? -re : re, re, conjugate ? -re : re};
    crossed = Lanes{conjugate ? im : -im, im, conjugate ? im : -im, im};
  }
  // sum = sum + z t for two numbers z.
  void addTo(Lanes& sum, const Lanes& z) const {
    const Lanes exchanged = {z[1], z[0], z[3], z[2]};
    sum += z * straight + exchanged * crossed;
  }
};

template <class T> T* start(T* x, int n, int stride) {
  return stride < 0 ? x - static_cast<std::ptrdiff_t>(n - 1) * stride : x;
}

Pair& pairAt(Complex* z) { return *reinterpret_cast<Pair*>(z); }
const Pair& pairAt(const Complex* z) { return *reinterpret_cast<const Pair*>(z); }

const Number& numberAt(const Complex* z) { return *reinterpret_cast<const Number*>(z); }

// y = y + a1 t1 + ... for C columns of length m.
template <int C>
void addColumns(const Complex* a, std::ptrdiff_t lda, const Complex* t, Complex* y, int m) {
  Factor factors[C];
  for (int c = 0; c < C; ++c) factors[c] = Factor(t[c]);
  int i = 0;
  for (; i + 2 <= m; i += 2) {
    Lanes sum = pairAt(y + i);
    for (int c = 0; c < C; ++c) {
      const Lanes z = pairAt(a + c * lda + i); // columns need not be aligned
      factors[c].addTo(sum, z);
    }
    pairAt(y + i) = sum;
  }
  for (int c = 0; c < C && i < m; ++c) y[i] += t[c] * a[c * lda + i];
}

// y = y + alpha A x for contiguous y.
void columnsInto(int m, int n, Complex alpha, const Complex* a, std::ptrdiff_t lda,
                 const Complex* x, int incx, Complex* y) {
  int j = 0;
  for (; j + COLUMNS <= n; j += COLUMNS, a += COLUMNS * lda) {
    Complex t[COLUMNS];
    for (Complex& value : t) {
      value = alpha * *x;
      x += incx;
    }
    addColumns<COLUMNS>(a, lda, t, y, m);
  }
  for (; j < n; ++j, a += lda, x += incx) {
    const Complex t = alpha * *x;
    addColumns<1>(a, lda, &t, y, m);
  }
}

// Scalar products of C columns, or of their conjugates, with x; two columns at a time.
template <bool Conjugate, int C>
void products(const Complex* a, std::ptrdiff_t lda, const Complex* x, int m, Complex* sums) {
  constexpr int PAIRS = (C + 1) / 2;
  Lanes s[PAIRS] = {};
  for (int i = 0; i < m; ++i) {
    const Factor factor(x[i], Conjugate);
    for (int p = 0; p < PAIRS; ++p) {
      const Complex *b = a + 2 * p * lda + i, *c = 2 * p + 1 < C ? b + lda : b;
      factor.addTo(s[p], __builtin_shufflevector(numberAt(b), numberAt(c), 0, 1, 2, 3));
    }
  }
  for (int c = 0; c < C; ++c) sums[c] = {s[c / 2][c % 2 * 2], s[c / 2][c % 2 * 2 + 1]};
}

// y = y + alpha A^T x or y + alpha A^H x for contiguous x.
template <bool Conjugate>
void productsInto(int m, int n, Complex alpha, const Complex* a, std::ptrdiff_t lda,
                  const Complex* x, Complex* y, int incy) {
  Complex sums[COLUMNS];
  int j = 0;
  for (; j + COLUMNS <= n; j += COLUMNS, a += COLUMNS * lda) {
    products<Conjugate, COLUMNS>(a, lda, x, m, sums);
    for (const Complex sum : sums) {
      *y += alpha * sum;
      y += incy;
    }
  }
  for (; j < n; ++j, a += lda, y += incy) {
    products<Conjugate, 1>(a, lda, x, m, sums);
    *y += alpha * sums[0];
  }
}

void stridedColumns(int m, int n, Complex alpha, const Complex* a, std::ptrdiff_t lda,
                    const Complex* x, int incx, Complex* y, int incy) {
  for (int j = 0; j < n; ++j, a += lda, x += incx) {
    const Complex t = alpha * *x;
    for (int i = 0; i < m; ++i) y[static_cast<std::ptrdiff_t>(i) * incy] += t * a[i];
  }
}

void stridedProducts(int m, int n, Complex alpha, const Complex* a, std::ptrdiff_t lda,
                     const Complex* x, int incx, bool conjugate, Complex* y, int incy) {
  for (int j = 0; j < n; ++j, a += lda, y += incy) {
    Complex sum = 0;
    for (int i = 0; i < m; ++i) {
      const Complex z = conjugate ? std::conj(a[i]) : a[i];
      sum += z * x[static_cast<std::ptrdiff_t>(i) * incx];
    }
    *y += alpha * sum;
  }
}

void scale(Complex beta, Complex* y, int n, int stride) {
  for (int i = 0; i < n; ++i, y += stride) *y = beta == 0.0 ? 0.0 : beta * *y;
}

} // namespace

extern "C" {

LCP_WIDTHS("avx2")
void zgemv_(const char* trans, const int* m, const int* n, const Complex* alpha, const Complex* a,
            const int* lda, const Complex* x, const int* incx, const Complex* beta, Complex* y,
            const int* incy, std::size_t) {
  const bool transposed = *trans != 'N' && *trans != 'n';
  const bool conjugate = *trans == 'C' || *trans == 'c';
  if (*m == 0 || *n == 0 || (*alpha == 0.0 && *beta == 1.0)) return;
  const Complex* from = start(x, transposed ? *m : *n, *incx);
  Complex* to = start(y, transposed ? *n : *m, *incy);
  if (*beta != 1.0) scale(*beta, to, transposed ? *n : *m, *incy);
  if (*alpha == 0.0) return;
  if (conjugate && *incx == 1) {
    productsInto<true>(*m, *n, *alpha, a, *lda, from, to, *incy);
  } else if (transposed && *incx == 1) {
    productsInto<false>(*m, *n, *alpha, a, *lda, from, to, *incy);
  } else if (transposed) {
    stridedProducts(*m, *n, *alpha, a, *lda, from, *incx, conjugate, to, *incy);
  } else if (*incy == 1) {
    columnsInto(*m, *n, *alpha, a, *lda, from, *incx, to);
  } else {
    stridedColumns(*m, *n, *alpha, a, *lda, from, *incx, to, *incy);
  }
}

LCP_WIDTHS("avx2")
void zgerc_(const int* m, const int* n, const Complex* alpha, const Complex* x, const int* incx,
            const Complex* y, const int* incy, Complex* a, const int* lda) {
  if (*m == 0 || *n == 0 || *alpha == 0.0) return;
  const Complex* column = start(x, *m, *incx);
  const Complex* row = start(y, *n, *incy);
  for (int j = 0; j < *n; ++j, a += *lda, row += *incy) {
    if (*row == 0.0) continue;
    const Complex t = *alpha * std::conj(*row);
    if (*incx == 1) {
      addColumns<1>(column, 0, &t, a, *m);
    } else {
      for (int i = 0; i < *m; ++i) a[i] += column[static_cast<std::ptrdiff_t>(i) * *incx] * t;
    }
  }
}
}

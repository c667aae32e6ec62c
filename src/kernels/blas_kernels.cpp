// The BLAS routines that dominate the time of the fits; they replace those of the reference BLAS in
// the statically linked reference LAPACK:
//
//   DGEMV   y = beta y + alpha A x  or  y = beta y + alpha A^T x
//   DGER    A = A + alpha x y^T
//   DNRM2   |x|
//   DSCAL   x = alpha x
//   DSWAP   x and y exchanged
//
// A is m by n in column order with leading dimension lda. The loops run over contiguous columns. A
// sum runs over LANES partial sums in a fixed order and nothing is fused, so the result does not
// depend on the width of the processor's registers, and 256-bit registers can be used where
// available. Vectors with a stride other than 1 take a scalar path. Arguments are not checked:
// LAPACK is the only caller.
//
// The file also defines what LAPACK's objects need thousands of times, case-insensitive comparison
// of letters and the properties of the arithmetic, and what they need of the Fortran run-time
// library, so that it need not be linked: the error exit and string concatenation (options of a
// block size query).
#include "base/console.h"
#include "base/register_widths.h"
#include "base/stop.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>
#include <string_view>

namespace {

constexpr int LANES = 4;   // partial sums of a scalar product
constexpr int COLUMNS = 4; // columns per sweep over a vector

// Address of element 1 of a vector; with a negative stride it is the last one in memory.
template <class T> T* start(T* x, int n, int stride) {
  return stride < 0 ? x - static_cast<std::ptrdiff_t>(n - 1) * stride : x;
}

void scale(double beta, double* y, int n, int stride) {
  for (int i = 0; i < n; ++i, y += stride) *y = beta == 0 ? 0 : beta * *y;
}

// y = y + a1 x1 + ... for COLUMNS columns of length m.
void addColumns(const double* a, std::ptrdiff_t lda, const double (&x)[COLUMNS],
                double* __restrict y, int m) {
  const double *a0 = a, *a1 = a + lda, *a2 = a1 + lda, *a3 = a2 + lda;
  for (int i = 0; i < m; ++i) {
    y[i] = (((y[i] + x[0] * a0[i]) + x[1] * a1[i]) + x[2] * a2[i]) + x[3] * a3[i];
  }
}

void addColumn(const double* a, double x, double* __restrict y, int m) {
  for (int i = 0; i < m; ++i) y[i] += x * a[i];
}

// LANES partial sums side by side, for a vector unit of any width.
using Lanes = double __attribute__((vector_size(LANES * sizeof(double)), aligned(alignof(double))));

const Lanes& lanes(const double* a) { return *reinterpret_cast<const Lanes*>(a); }

double total(const Lanes& s) { return (s[0] + s[1]) + (s[2] + s[3]); }

// Scalar products of x with C columns of length m.
template <int C>
void products(const double* a, std::ptrdiff_t lda, const double* x, int m,
              double (&sums)[COLUMNS]) {
  Lanes s[C] = {};
  int i = 0;
  for (; i + LANES <= m; i += LANES) {
    for (int c = 0; c < C; ++c) s[c] += lanes(a + c * lda + i) * lanes(x + i);
  }
  for (int c = 0; c < C; ++c) {
    sums[c] = total(s[c]);
    for (int k = i; k < m; ++k) sums[c] += a[c * lda + k] * x[k];
  }
}

// y = y + alpha A x for contiguous y.
void columnsInto(int m, int n, double alpha, const double* a, std::ptrdiff_t lda, const double* x,
                 int incx, double* y) {
  int j = 0;
  for (; j + COLUMNS <= n; j += COLUMNS, a += COLUMNS * lda) {
    double c[COLUMNS];
    for (double& value : c) {
      value = alpha * *x;
      x += incx;
    }
    addColumns(a, lda, c, y, m);
  }
  for (; j < n; ++j, a += lda, x += incx) addColumn(a, alpha * *x, y, m);
}

// y = y + alpha A^T x for contiguous x.
void productsInto(int m, int n, double alpha, const double* a, std::ptrdiff_t lda, const double* x,
                  double* y, int incy) {
  double sums[COLUMNS];
  int j = 0;
  for (; j + COLUMNS <= n; j += COLUMNS, a += COLUMNS * lda) {
    products<COLUMNS>(a, lda, x, m, sums);
    for (const double sum : sums) {
      *y += alpha * sum;
      y += incy;
    }
  }
  for (; j < n; ++j, a += lda, y += incy) {
    products<1>(a, lda, x, m, sums);
    *y += alpha * sums[0];
  }
}

char upper(char c) { return static_cast<char>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c); }

// Sums of squares between these bounds neither overflow nor lose precision.
constexpr double LEASTSQUARES = 1e-280;
constexpr double MOSTSQUARES = 1e280;

// Euclidean length, scaled by the largest element, for sums of squares outside the bounds. NaN
// gives NaN.
double scaledLength(const double* x, int n, int stride) {
  double largest = 0;
  for (int i = 0; i < n; ++i) {
    const double e = std::abs(x[static_cast<std::ptrdiff_t>(i) * stride]);
    if (!(e <= largest)) largest = e;
    if (std::isnan(e)) return e;
  }
  if (largest == 0 || std::isinf(largest)) return largest;
  double sum = 0;
  for (int i = 0; i < n; ++i) {
    const double e = x[static_cast<std::ptrdiff_t>(i) * stride] / largest;
    sum += e * e;
  }
  return largest * std::sqrt(sum);
}

void stridedProduct(bool transposed, int m, int n, double alpha, const double* a,
                    std::ptrdiff_t lda, const double* x, int incx, double* y, int incy) {
  for (int j = 0; j < n; ++j) {
    for (int i = 0; i < m; ++i) {
      const double e = alpha * a[j * lda + i];
      if (transposed) {
        y[static_cast<std::ptrdiff_t>(j) * incy] += e * x[static_cast<std::ptrdiff_t>(i) * incx];
      } else {
        y[static_cast<std::ptrdiff_t>(i) * incy] += e * x[static_cast<std::ptrdiff_t>(j) * incx];
      }
    }
  }
}

} // namespace

extern "C" {

LCP_WIDTHS("avx2")
void dgemv_(const char* trans, const int* m, const int* n, const double* alpha, const double* a,
            const int* lda, const double* x, const int* incx, const double* beta, double* y,
            const int* incy, std::size_t) {
  const bool transposed = *trans != 'N' && *trans != 'n';
  if (*m == 0 || *n == 0) return;
  const double* from = start(x, transposed ? *m : *n, *incx);
  double* to = start(y, transposed ? *n : *m, *incy);
  if (*beta != 1) scale(*beta, to, transposed ? *n : *m, *incy);
  if (*alpha == 0) return;
  if (transposed && *incx == 1) {
    productsInto(*m, *n, *alpha, a, *lda, from, to, *incy);
  } else if (!transposed && *incy == 1) {
    columnsInto(*m, *n, *alpha, a, *lda, from, *incx, to);
  } else {
    stridedProduct(transposed, *m, *n, *alpha, a, *lda, from, *incx, to, *incy);
  }
}

LCP_WIDTHS("avx2")
void dger_(const int* m, const int* n, const double* alpha, const double* x, const int* incx,
           const double* y, const int* incy, double* a, const int* lda) {
  const double* column = start(x, *m, *incx);
  const double* row = start(y, *n, *incy);
  for (int j = 0; j < *n; ++j, a += *lda, row += *incy) {
    const double c = *alpha * *row;
    if (*incx == 1) {
      addColumn(column, c, a, *m);
    } else {
      for (int i = 0; i < *m; ++i) a[i] += c * column[static_cast<std::ptrdiff_t>(i) * *incx];
    }
  }
}

LCP_WIDTHS("avx2")
void dscal_(const int* n, const double* alpha, double* x, const int* incx) {
  if (*incx == 1) {
    for (int i = 0; i < *n; ++i) x[i] = *alpha * x[i];
  } else if (*incx > 0) {
    for (int i = 0; i < *n; ++i) x[static_cast<std::ptrdiff_t>(i) * *incx] *= *alpha;
  }
}

LCP_WIDTHS("avx2")
void dswap_(const int* n, double* x, const int* incx, double* y, const int* incy) {
  double* a = start(x, *n, *incx);
  double* b = start(y, *n, *incy);
  if (*incx == 1 && *incy == 1) {
    std::swap_ranges(a, a + std::max(*n, 0), b);
    return;
  }
  for (int i = 0; i < *n; ++i, a += *incx, b += *incy) std::swap(*a, *b);
}

LCP_WIDTHS("avx2") double dnrm2_(const int* n, const double* x, const int* incx) {
  if (*n < 1) return 0;
  const double* from = start(x, *n, *incx);
  double sums[COLUMNS] = {};
  if (*incx == 1) {
    products<1>(from, 0, from, *n, sums);
  } else {
    for (int i = 0; i < *n; ++i) {
      const double e = from[static_cast<std::ptrdiff_t>(i) * *incx];
      sums[0] += e * e;
    }
  }
  const bool safe = sums[0] > LEASTSQUARES && sums[0] < MOSTSQUARES;
  return safe ? std::sqrt(sums[0]) : scaledLength(from, *n, *incx);
}

int lsame_(const char* a, const char* b, std::size_t, std::size_t) {
  return upper(*a) == upper(*b);
}

// Epsilon is the unit roundoff: half the distance from 1 to the next number.
double dlamch_(const char* what, std::size_t) {
  using Limits = std::numeric_limits<double>;
  switch (upper(*what)) {
  case 'E': return Limits::epsilon() / 2;
  case 'S': return Limits::min(); // its reciprocal does not overflow
  case 'B': return Limits::radix;
  case 'P': return Limits::epsilon();
  case 'N': return Limits::digits;
  case 'R': return 1;
  case 'M': return Limits::min_exponent;
  case 'U': return Limits::min();
  case 'L': return Limits::max_exponent;
  case 'O': return Limits::max();
  default: return 0;
  }
}

// A wrong argument of a LAPACK routine is an error in this program.
[[noreturn]] void xerbla_(const char* name, const int* argument, std::size_t length) {
  lcp::console::openStars();
  lcp::console::print("Argument {} of {} is Wrong!", *argument, std::string_view(name, length));
  lcp::console::closeStars();
  lcp::stop(1);
}

// target = first followed by second, truncated or padded with blanks to its length.
void _gfortran_concat_string(std::size_t length, char* target, std::size_t n, const char* first,
                             std::size_t m, const char* second) {
  std::memset(target, ' ', length);
  const std::size_t head = std::min(n, length);
  std::memcpy(target, first, head);
  std::memcpy(target + head, second, std::min(m, length - head));
}
}

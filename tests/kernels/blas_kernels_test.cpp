#include <algorithm>
#include <cmath>
#include <complex>
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <random>
#include <vector>

extern "C" {
void dgemv_(const char* trans, const int* m, const int* n, const double* alpha, const double* a,
            const int* lda, const double* x, const int* incx, const double* beta, double* y,
            const int* incy, std::size_t);
void dger_(const int* m, const int* n, const double* alpha, const double* x, const int* incx,
           const double* y, const int* incy, double* a, const int* lda);
double dnrm2_(const int* n, const double* x, const int* incx);
void dscal_(const int* n, const double* alpha, double* x, const int* incx);
void dswap_(const int* n, double* x, const int* incx, double* y, const int* incy);
void zgemv_(const char* trans, const int* m, const int* n, const std::complex<double>* alpha,
            const std::complex<double>* a, const int* lda, const std::complex<double>* x,
            const int* incx, const std::complex<double>* beta, std::complex<double>* y,
            const int* incy, std::size_t);
void zgerc_(const int* m, const int* n, const std::complex<double>* alpha,
            const std::complex<double>* x, const int* incx, const std::complex<double>* y,
            const int* incy, std::complex<double>* a, const int* lda);
}

namespace {

std::mt19937 numbers(61);

void draw(double& x) { x = std::normal_distribution<double>()(numbers); }
void draw(std::complex<double>& z) {
  double parts[2];
  for (double& x : parts) draw(x);
  z = {parts[0], parts[1]};
}

// n elements with NaN between them; a column of a matrix if the stride is 1.
template <class T> struct Strided {
  T memory[20];
  std::ptrdiff_t n;
  int stride;

  Strided(int length, int step) : n(length), stride(step) {
    std::fill(std::begin(memory), std::end(memory), std::nan(""));
    for (int i = 0; i < n; ++i) draw((*this)[i]);
  }
  T& operator[](int i) { return memory[stride < 0 ? (i + 1 - n) * stride : i * stride]; }
};
using Reals = Strided<double>;
using Complexes = Strided<std::complex<double>>;
template <class T> constexpr int LDA = sizeof(Strided<T>) / sizeof(T);

// Equal bits; equal to rounding for other kernels.
bool same(double is, double wanted) {
  static const bool own = dlsym(RTLD_DEFAULT, "openblas_get_config") == nullptr;
  if (std::isnan(wanted)) return std::isnan(is);
  return own ? is == wanted : std::abs(is - wanted) <= 1e-13;
}

bool same(std::complex<double> is, std::complex<double> wanted) {
  return same(is.real(), wanted.real()) && same(is.imag(), wanted.imag());
}

template <class T> bool same(const Strided<T>& is, const Strided<T>& wanted) {
  return std::equal(std::begin(is.memory), std::end(is.memory), wanted.memory,
                    [](T a, T b) { return same(a, b); });
}

// A sum of products: contiguous numbers as four sums, followed by the rest.
double product(Reals& a, Reals& x) {
  double sums[4] = {};
  const int n = static_cast<int>(x.n), whole = x.stride == 1 ? n / 4 * 4 : 0;
  for (int i = 0; i < whole; ++i) sums[i % 4] += a[i] * x[i];
  double sum = (sums[0] + sums[1]) + (sums[2] + sums[3]);
  for (int i = whole; i < n; ++i) sum += a[i] * x[i];
  return sum;
}

} // namespace

// y = beta y + alpha A x or alpha A^T x column by column, A = A + alpha x y^T, |x|. With alpha a
// power of 2 the bits depend only on the order of the sums.
TEST(BlasKernels, AreThePlainLoops) {
  const double factors[][2] = {{1.0, 0.0}, {-0.5, 1.0}, {2.0, 0.3}, {0.0, 0.3}};
  for (int t = 0; t < 9 * 9 * 3 * 3 * 8; ++t) {
    const int rows = 1 + t % 9, columns = 1 + t / 9 % 9, strides[] = {1, 2, -1};
    const bool across = t / 729 % 2 == 1;
    const auto& [alpha, beta] = factors[t / 1458];
    Reals x(across ? rows : columns, strides[t / 81 % 3]);
    Reals y(across ? columns : rows, strides[t / 243 % 3]), sum = y, into = y;
    std::vector<Reals> A;
    for (int j = 0; j < columns; ++j) A.emplace_back(rows, 1);
    for (int i = 0; i < y.n; ++i) sum[i] = beta == 0 ? 0 : beta * y[i];
    if (beta == 0) std::fill(std::begin(into.memory), std::end(into.memory), std::nan(""));
    for (int j = 0; j < columns; ++j) {
      const bool whole = across && x.stride == 1;
      if (whole) sum[j] += alpha * product(A[j], x);
      for (int i = whole ? rows : 0; i < rows; ++i)
        (across ? sum[j] : sum[i]) += alpha * A[j][i] * (across ? x[i] : x[j]);
    }
    dgemv_(across ? "T" : "N", &rows, &columns, &alpha, A[0].memory, &LDA<double>, x.memory,
           &x.stride, &beta, into.memory, &y.stride, 1);
    EXPECT_TRUE(same(into, sum)) << t;
    Reals other(rows, y.stride), first = A[0], second = other, scaled = other;
    dswap_(&rows, first.memory, &first.stride, second.memory, &second.stride);
    for (int i = 0; i < rows; ++i) EXPECT_TRUE(first[i] == other[i] && second[i] == A[0][i]) << t;
    dscal_(&rows, &alpha, scaled.memory, &scaled.stride);
    for (int i = 0; i < rows && y.stride > 0; ++i) other[i] *= alpha;
    EXPECT_TRUE(same(scaled, other)) << t;
    if (!across) continue;
    std::vector<Reals> B = A;
    dger_(&rows, &columns, &alpha, x.memory, &x.stride, y.memory, &y.stride, B[0].memory,
          &LDA<double>);
    for (int j = 0; j < columns; ++j) {
      for (int i = 0; i < rows; ++i) A[j][i] += alpha * y[j] * x[i];
      EXPECT_TRUE(same(B[j], A[j])) << t;
    }
    if (x.stride < 0) continue; // which have no length
    const double length = std::sqrt(product(x, x));
    EXPECT_TRUE(same(dnrm2_(&rows, x.memory, &x.stride), length)) << t;
    for (const double size : {1e-170, 1e170}) { // squares overflow or underflow
      Reals far = x;
      for (double& e : far.memory) e *= size;
      EXPECT_NEAR(dnrm2_(&rows, far.memory, &x.stride) / size / length, 1.0, 1e-14) << t;
    }
  }
}

// The same for complex numbers, with A^T and A^H; sums run in order.
TEST(BlasKernels, AreThePlainComplexLoops) {
  using Complex = std::complex<double>;
  const Complex factors[][2] = {{1.0, 0.0}, {{-0.5, 0.25}, 1.0}, {{0.0, 2.0}, {0.3, -0.1}}};
  for (int t = 0; t < 9 * 9 * 3 * 3 * 9; ++t) {
    const int rows = 1 + t % 9, columns = 1 + t / 9 % 9, strides[] = {1, 2, -1};
    const int kind = t / 729 % 3;
    const auto& [alpha, beta] = factors[t / 2187];
    Complexes x(kind > 0 ? rows : columns, strides[t / 81 % 3]);
    Complexes y(kind > 0 ? columns : rows, strides[t / 243 % 3]), sum = y, into = y;
    std::vector<Complexes> A;
    for (int j = 0; j < columns; ++j) A.emplace_back(rows, 1);
    y[0] = 0.0;
    for (int i = 0; i < y.n; ++i) sum[i] = beta == 0.0 ? 0.0 : beta * sum[i];
    for (int j = 0; j < columns; ++j) {
      Complex product = 0.0;
      for (int i = 0; i < rows; ++i) {
        const Complex a = kind == 2 ? std::conj(A[j][i]) : A[j][i];
        if (kind > 0) {
          product += a * x[i];
        } else {
          sum[i] += (alpha * x[j]) * a;
        }
      }
      if (kind > 0) sum[j] += alpha * product;
    }
    zgemv_(&"NTC"[kind], &rows, &columns, &alpha, A[0].memory, &LDA<Complex>, x.memory, &x.stride,
           &beta, into.memory, &y.stride, 1);
    EXPECT_TRUE(same(into, sum)) << t;
    if (kind == 0) continue;
    std::vector<Complexes> B = A;
    zgerc_(&rows, &columns, &alpha, x.memory, &x.stride, y.memory, &y.stride, B[0].memory,
           &LDA<Complex>);
    for (int j = 0; j < columns; ++j) {
      for (int i = 0; i < rows; ++i) A[j][i] += x[i] * (alpha * std::conj(y[j]));
      EXPECT_TRUE(same(B[j], A[j])) << t;
    }
  }
}

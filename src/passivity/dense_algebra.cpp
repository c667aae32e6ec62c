#include "passivity/dense_algebra.h"

#include "base/console.h"
#include "base/solve_error.h"
#include "kernels/matrix_kernels.h"

#include <algorithm>
#include <cmath>
#include <limits>

extern "C" {
void zgeev_(const char* jobvl, const char* jobvr, const int* n, lcp::Complex* a, const int* lda,
            lcp::Complex* w, lcp::Complex* vl, const int* ldvl, lcp::Complex* vr, const int* ldvr,
            lcp::Complex* work, const int* lwork, double* rwork, int* info, std::size_t,
            std::size_t);
void zheev_(const char* jobz, const char* uplo, const int* n, lcp::Complex* a, const int* lda,
            double* w, lcp::Complex* work, const int* lwork, double* rwork, int* info, std::size_t,
            std::size_t);
void zgetrf_(const int* m, const int* n, lcp::Complex* a, const int* lda, int* ipiv, int* info);
void zgetri_(const int* n, lcp::Complex* a, const int* lda, const int* ipiv, lcp::Complex* work,
             const int* lwork, int* info);
void dsyrk_(const char* uplo, const char* trans, const int* n, const int* k, const double* alpha,
            const double* a, const int* lda, const double* beta, double* c, const int* ldc,
            std::size_t, std::size_t);
void dgemm_(const char* transa, const char* transb, const int* m, const int* n, const int* k,
            const double* alpha, const double* a, const int* lda, const double* b, const int* ldb,
            const double* beta, double* c, const int* ldc, std::size_t, std::size_t);
}

namespace lcp {

namespace {

constexpr int WORKSIZE = 1000; // most that a call is given of what LAPACK asks for
constexpr int QUERY = -1;
Complex work[WORKSIZE];

// How much of the work store a call gets: what the query answered, within the store.
int workLength() { return std::clamp(static_cast<int>(work[0].real()), 1, WORKSIZE); }

bool allFinite(CConstView A, int n) {
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) {
      if (!std::isfinite(A(i, j).real()) || !std::isfinite(A(i, j).imag())) return false;
    }
  }
  return true;
}

void fillNoNumbers(Complex* z, int n) {
  std::fill_n(z, n, Complex(std::numeric_limits<double>::quiet_NaN(), 0));
}

// The left vectors, which nothing reads, are not asked for.
void ZGEEV(CView A, Complex* W, CView VR, int n) {
  static double rwork[2 * LDMAT];
  Complex none = 0;
  const int one = 1;
  int info = 0;
  const auto call = [&](int lwork) {
    zgeev_("N", "V", &n, A.first, &A.ld, W, &none, &one, VR.first, &VR.ld, work, &lwork, rwork,
           &info, 1, 1);
  };
  call(QUERY);
  call(std::max(workLength(), 2 * n));
}

} // namespace

void ZEIGSORT(CConstView A, ModeComplex& W, CView VR, int n) {
  static LineMatrix schur, unsorted;
  static ModeComplex found;
  if (!allFinite(A, n)) {
    fillNoNumbers(W.data(), n);
    for (int j = 1; j <= n; ++j) fillNoNumbers(VR.column(j), n);
    return;
  }
  copyCorner(schur, A, n);
  ZGEEV(schur, found.data(), unsorted, n);
  ModeInts order;
  for (int j = 1; j <= n; ++j) order[j] = j;
  std::stable_sort(order.data(), order.data() + n,
                   [](int a, int b) { return std::abs(found[a]) < std::abs(found[b]); });
  for (int j = 1; j <= n; ++j) {
    W[j] = found[order[j]];
    std::copy_n(unsorted.view().column(order[j]), n, VR.column(j));
  }
}

void ZHEEV(CView A, double* W, int n) {
  static double rwork[3 * LDMAT];
  if (!allFinite(A, n)) {
    std::fill_n(W, n, std::numeric_limits<double>::quiet_NaN());
    return;
  }
  int info = 0;
  zheev_("N", "U", &n, A.first, &A.ld, W, work, &WORKSIZE, rwork, &info, 1, 1);
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
  int info = 0;
  if (A.first != R.first) copyCorner(R, A, n);
  zgetrf_(&n, &n, R.first, &R.ld, pivots.data(), &info);
  if (info != 0) endInversion("Matrix is numerically singular!");
  const int query = QUERY;
  zgetri_(&n, R.first, &R.ld, pivots.data(), work, &query, &info);
  const int lwork = std::max(workLength(), n);
  zgetri_(&n, R.first, &R.ld, pivots.data(), work, &lwork, &info);
  if (info != 0) endInversion("Matrix inversion failed!");
}

void addNormalMatrix(RView G, RConstView S, int rows, int columns) {
  const double one = 1;
  dsyrk_("U", "T", &columns, &rows, &one, S.first, &S.ld, &one, G.first, &G.ld, 1, 1);
}

void transposedProduct(RView D, RConstView Q, RConstView S, int rows, int m, int n) {
  const double one = 1, zero = 0;
  dgemm_("T", "N", &m, &n, &rows, &one, Q.first, &Q.ld, S.first, &S.ld, &zero, D.first, &D.ld, 1,
         1);
}

} // namespace lcp

#include "kernels/least_squares.h"

#include "base/register_widths.h"

#include <algorithm>
#include <cmath>

extern "C" {
void dgeqp3_(const int* m, const int* n, double* a, const int* lda, int* jpvt, double* tau,
             double* work, const int* lwork, int* info);
void dlaic1_(const int* job, const int* j, const double* x, const double* sest, const double* w,
             const double* gamma, double* sestpr, double* s, double* c);
void dtzrzf_(const int* m, const int* n, double* a, const int* lda, double* tau, double* work,
             const int* lwork, int* info);
void dormqr_(const char* side, const char* trans, const int* m, const int* n, const int* k,
             double* a, const int* lda, const double* tau, double* c, const int* ldc, double* work,
             const int* lwork, int* info, std::size_t, std::size_t);
void dormrz_(const char* side, const char* trans, const int* m, const int* n, const int* k,
             const int* l, const double* a, const int* lda, const double* tau, double* c,
             const int* ldc, double* work, const int* lwork, int* info, std::size_t, std::size_t);
void dtrsm_(const char* side, const char* uplo, const char* trans, const char* diag, const int* m,
            const int* n, const double* alpha, const double* a, const int* lda, double* b,
            const int* ldb, std::size_t, std::size_t, std::size_t, std::size_t);
void dgemv_(const char* trans, const int* m, const int* n, const double* alpha, const double* a,
            const int* lda, const double* x, const int* incx, const double* beta, double* y,
            const int* incy, std::size_t);
void dger_(const int* m, const int* n, const double* alpha, const double* x, const int* incx,
           const double* y, const int* incy, double* a, const int* lda);
void dgelsy_(const int* m, const int* n, const int* nrhs, double* a, const int* lda, double* b,
             const int* ldb, int* jpvt, const double* rcond, int* rank, double* work,
             const int* lwork, int* info);
}

namespace lcp {

namespace {

// The minimum work length at full capacity; smaller problems get LSWORK.
constexpr int WORKSIZE = std::max({LSWORK, LSROWS + 3 * MAXCOLUMNS + 1, 2 * LSROWS + LSRHS});
double work[WORKSIZE];

// LAPACK's driver scales a matrix whose largest element is outside this range, or 0, or which
// contains a NaN.
constexpr double LEASTUNSCALED = 1e-290;
constexpr double MOSTUNSCALED = 1e290;

struct Extent {
  Lanes most{}, least{};
  Lanes sum{}; // a NaN shows in it

  void take(const Lanes& a) {
    most = a > most ? a : most;
    least = a < least ? a : least;
    sum += 0.0 * a;
  }
};

LCP_WIDTHS("avx2") bool needsNoScaling(RView A, int m, int n) {
  Extent x;
  for (int c = 1; c <= n; ++c) {
    const double* a = A.column(c);
    int r = 0;
    for (; r + LANES <= m; r += LANES) x.take(Lanes{a[r], a[r + 1], a[r + 2], a[r + 3]});
    for (; r < m; ++r) x.take(a[r] - Lanes{});
  }
  double largest = 0, sum = 0;
  for (int c = 0; c < LANES; ++c) {
    largest = std::max({largest, x.most[c], -x.least[c]});
    sum += x.sum[c];
  }
  return sum == 0 && largest > LEASTUNSCALED && largest < MOSTUNSCALED;
}

// The steps of LAPACK's driver on a problem that needs no scaling. The driver itself searches
// element by element for a need to scale, which takes a third of the time of a fit.
struct PivotedFactors {
  RView A;
  int m, n, least; // least: min(m, n)
  int rank = 0;
  double* tau;      // of the reflectors of Q
  double* smallest; // singular vectors of the condition estimate, later tau of the row reflectors
  double* largest;
  double* rest; // rest of the work array
  int nrest;
};

// Extends the leading triangle while its estimated condition number stays below 1 / rcond.
void estimateRank(PivotedFactors& F, double rcond) {
  const int LARGEST = 1, SMALLEST = 2;
  double smax = std::fabs(F.A(1, 1)), smin = smax;
  if (smax == 0) return;
  F.smallest[0] = F.largest[0] = 1;
  for (F.rank = 1; F.rank < F.least; ++F.rank) {
    const int i = F.rank + 1;
    const double* column = F.A.column(i);
    double smaller = 0, larger = 0, s1 = 0, c1 = 0, s2 = 0, c2 = 0;
    dlaic1_(&SMALLEST, &F.rank, F.smallest, &smin, column, column + F.rank, &smaller, &s1, &c1);
    dlaic1_(&LARGEST, &F.rank, F.largest, &smax, column, column + F.rank, &larger, &s2, &c2);
    if (!(larger * rcond <= smaller)) return;
    for (int k = 0; k < F.rank; ++k) {
      F.smallest[k] *= s1;
      F.largest[k] *= s2;
    }
    F.smallest[F.rank] = c1;
    F.largest[F.rank] = c2;
    smin = smaller;
    smax = larger;
  }
}

// B = H B with the reflector H = I - tau v v^T in column i of the factors, for n columns of B from
// row i down. Returns false if a single column B was 0 there.
bool reflect(const PivotedFactors& F, int i, double* b, int ldb, int n) {
  constexpr int UNIT = 1;
  const double one = 1, zero = 0, tau = -F.tau[i - 1];
  const double* v = &F.A(i, i);
  int length = tau == 0 ? 0 : F.m + 1 - i;
  while (length > 1 && v[length - 1] == 0) --length;
  if (length == 0) return true;
  const bool empty = n == 1 && std::all_of(b, b + length, [](double e) { return e == 0; });
  dgemv_("T", &length, &n, &one, b, &ldb, v, &UNIT, &zero, F.rest, &UNIT, 1);
  dger_(&length, &n, &tau, v, &UNIT, F.rest, &UNIT, b, &ldb);
  return !empty;
}

// B = Q^T B for n columns. Returns false if a single column was 0 before one of the reflectors.
bool reflectAll(const PivotedFactors& F, double* b, int ldb, int n) {
  bool full = true;
  for (int i = 1; i <= F.least; ++i) {
    const double diagonal = F.A(i, i);
    F.A(i, i) = 1;
    full = reflect(F, i, b + i - 1, ldb, n) && full;
    F.A(i, i) = diagonal;
  }
  return full;
}

// LAPACK applies reflectors in blocks if there are many and the work array suffices, otherwise one
// by one over all columns, which for the columns of a line matrix do not stay in the cache.
// Applying them strip by strip gives the same bits, unless the last column is 0, which LAPACK
// skips.
bool applyInStrips(const PivotedFactors& F, RView B, int nrhs) {
  constexpr int BLOCK = 32, TRIANGLES = 65 * 64; // reflectors; work for their factors
  constexpr int STRIP = 4;                       // columns per sweep of DGEMV
  static double last[LSROWS];
  if (nrhs <= STRIP || (F.least > BLOCK && (F.nrest - TRIANGLES) / nrhs >= 2)) return false;
  std::copy_n(B.column(nrhs), F.m, last);
  if (!reflectAll(F, last, F.m, 1)) return false;
  for (int c = 1; c <= nrhs; c += STRIP)
    reflectAll(F, B.column(c), B.ld, std::min(STRIP, nrhs + 1 - c));
  return true;
}

void solveFactored(const PivotedFactors& F, RView B, int nrhs) {
  const double one = 1;
  const int beyond = F.n - F.rank;
  int info = 0;
  if (!applyInStrips(F, B, nrhs)) {
    dormqr_("L", "T", &F.m, &nrhs, &F.least, F.A.first, &F.A.ld, F.tau, B.first, &B.ld, F.rest,
            &F.nrest, &info, 1, 1);
  }
  dtrsm_("L", "U", "N", "N", &F.rank, &nrhs, &one, F.A.first, &F.A.ld, B.first, &B.ld, 1, 1, 1, 1);
  for (int c = 1; c <= nrhs; ++c) std::fill_n(B.column(c) + F.rank, beyond, 0.0);
  if (beyond == 0) return;
  dormrz_("L", "T", &F.n, &nrhs, &F.rank, &beyond, F.A.first, &F.A.ld, F.smallest, B.first, &B.ld,
          F.rest, &F.nrest, &info, 1, 1);
}

void unpivot(RView B, int n, int nrhs, const ColumnInts& JPVT) {
  for (int c = 1; c <= nrhs; ++c) {
    double* b = B.column(c);
    for (int i = 1; i <= n; ++i) work[JPVT[i] - 1] = b[i - 1];
    std::copy_n(work, n, b);
  }
}

void solveUnscaled(RView A, RView B, int m, int n, int nrhs, ColumnInts& JPVT, double rcond,
                   int lwork) {
  const int least = std::min(m, n);
  PivotedFactors F{
      A, m, n, least, 0, work, work + least, work + 2 * least, work + 2 * least, lwork - 2 * least};
  const int behindTau = lwork - least;
  int info = 0;
  dgeqp3_(&m, &n, A.first, &A.ld, JPVT.data(), F.tau, work + least, &behindTau, &info);
  estimateRank(F, rcond);
  if (F.rank == 0) {
    for (int c = 1; c <= nrhs; ++c) std::fill_n(B.column(c), std::max(m, n), 0.0);
    return;
  }
  if (F.rank < n) dtzrzf_(&F.rank, &n, A.first, &A.ld, F.smallest, F.rest, &F.nrest, &info);
  solveFactored(F, B, nrhs);
  unpivot(B, n, nrhs, JPVT);
}

} // namespace

void DGELSY(RView A, RView B, int m, int n, int nrhs, ColumnInts& JPVT, double rcond) {
  const int least = std::max(std::min(m, n) + 3 * n + 1, 2 * std::min(m, n) + nrhs);
  const int lwork = std::max(LSWORK, least);
  if (needsNoScaling(A, m, n) && needsNoScaling(B, m, nrhs)) {
    solveUnscaled(A, B, m, n, nrhs, JPVT, rcond, lwork);
    return;
  }
  int rank = 0;
  int info = 0;
  dgelsy_(&m, &n, &nrhs, A.first, &A.ld, B.first, &B.ld, JPVT.data(), &rcond, &rank, work, &lwork,
          &info);
}

void DGELSY(RView A, RView B, int m, int n, int nrhs, double rcond) {
  static ColumnInts JPVT;
  std::fill_n(JPVT.data(), n, 0);
  DGELSY(A, B, m, n, nrhs, JPVT, rcond);
}

} // namespace lcp

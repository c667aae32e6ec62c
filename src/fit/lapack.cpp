#include "fit/lapack.h"

#include <algorithm>
#include <cmath>
#include <limits>

extern "C" {
void dgelsy_(const int* m, const int* n, const int* nrhs, double* a, const int* lda, double* b,
             const int* ldb, int* jpvt, const double* rcond, int* rank, double* work,
             const int* lwork, int* info);
void dgeev_(const char* jobvl, const char* jobvr, const int* n, double* a, const int* lda,
            double* wr, double* wi, double* vl, const int* ldvl, double* vr, const int* ldvr,
            double* work, const int* lwork, int* info, std::size_t, std::size_t);
void dgesvd_(const char* jobu, const char* jobvt, const int* m, const int* n, double* a,
             const int* lda, double* s, double* u, const int* ldu, double* vt, const int* ldvt,
             double* work, const int* lwork, int* info, std::size_t, std::size_t);
}

namespace lcp {

namespace {

// The least that LAPACK asks for at the capacities; smaller problems are given LSWORK numbers.
constexpr int WORKSIZE = std::max(
    {LSWORK, LSROWS + 3 * MAXCOLUMNS + 1, 2 * LSROWS + LSRHS, 3 * LSROWS + MAXCOLUMNS, 5 * LSROWS});
double work[WORKSIZE];

} // namespace

int DGELSY(RView A, RView B, int m, int n, int nrhs, ColumnInts& JPVT, double rcond) {
  const int least = std::max(std::min(m, n) + 3 * n + 1, 2 * std::min(m, n) + nrhs);
  const int lwork = std::max(LSWORK, least);
  int rank = 0;
  int info = 0;
  dgelsy_(&m, &n, &nrhs, A.first, &A.ld, B.first, &B.ld, JPVT.data(), &rcond, &rank, work, &lwork,
          &info);
  return rank;
}

int DGELSY(RView A, RView B, int m, int n, int nrhs, double rcond) {
  static ColumnInts JPVT;
  std::fill_n(JPVT.data(), n, 0);
  return DGELSY(A, B, m, n, nrhs, JPVT, rcond);
}

namespace {

bool allNumbers(RView A, int n) {
  for (int c = 1; c <= n; ++c) {
    const double* a = A.column(c);
    if (std::any_of(a, a + n, [](double x) { return std::isnan(x); })) return false;
  }
  return true;
}

} // namespace

int DGEEV(RView A, int n, Table<double, NPMAX>& WR, Table<double, NPMAX>& WI) {
  const bool numbers = allNumbers(A, n); // LAPACK may end the process otherwise
  // What stands where an iteration without end leaves values out.
  std::fill_n(WR.data(), n, numbers ? 0.0 : std::numeric_limits<double>::quiet_NaN());
  std::fill_n(WI.data(), n, 0.0);
  if (!numbers) return -1;
  const int one = 1;
  double none = 0; // the vectors, which are not asked for
  int info = 0;
  dgeev_("N", "N", &n, A.first, &A.ld, WR.data(), WI.data(), &none, &one, &none, &one, work,
         &LSWORK, &info, 1, 1);
  return info;
}

void DGESVD(RView A, int m, int n, Table<double, LSROWS>& S, RView U, RView VT) {
  const int lwork = std::max({1, 3 * std::min(m, n) + std::max(m, n), 5 * std::min(m, n)});
  int info = 0;
  dgesvd_("S", "S", &m, &n, A.first, &A.ld, S.data(), U.first, &U.ld, VT.first, &VT.ld, work,
          &lwork, &info, 1, 1);
}

void scaleColumns(RView A, int m, int n, ColumnReals& SCALE) {
  for (int c = 1; c <= n; ++c) {
    double* a = A.column(c);
    double sum = 0;
    for (int r = 0; r < m; ++r) sum += a[r] * a[r];
    const double e = sum == 0 ? 1.0 : std::sqrt(sum);
    for (int r = 0; r < m; ++r) a[r] /= e;
    SCALE[c] = e;
  }
}

void unscaleRows(RView X, int n, int nrhs, const ColumnReals& SCALE) {
  for (int c = 1; c <= nrhs; ++c) {
    for (int r = 1; r <= n; ++r) X(r, c) /= SCALE[r];
  }
}

} // namespace lcp

#include "kernels/lapack.h"

#include "base/finite.h"
#include "kernels/matrix_kernels.h"

#include <algorithm>
#include <cmath>
#include <limits>

using lcp::Complex;

extern "C" {
void zgeev_(const char* jobvl, const char* jobvr, const int* n, Complex* a, const int* lda,
            Complex* w, Complex* vl, const int* ldvl, Complex* vr, const int* ldvr, Complex* work,
            const int* lwork, double* rwork, int* info, std::size_t, std::size_t);
void zheev_(const char* jobz, const char* uplo, const int* n, Complex* a, const int* lda, double* w,
            Complex* work, const int* lwork, double* rwork, int* info, std::size_t, std::size_t);
void zgehrd_(const int* n, const int* ilo, const int* ihi, Complex* a, const int* lda, Complex* tau,
             Complex* work, const int* lwork, int* info);
void zunghr_(const int* n, const int* ilo, const int* ihi, Complex* a, const int* lda,
             const Complex* tau, Complex* work, const int* lwork, int* info);
void zgetrf_(const int* m, const int* n, Complex* a, const int* lda, int* ipiv, int* info);
void zgetri_(const int* n, Complex* a, const int* lda, const int* ipiv, Complex* work,
             const int* lwork, int* info);
void dgeev_(const char* jobvl, const char* jobvr, const int* n, double* a, const int* lda,
            double* wr, double* wi, double* vl, const int* ldvl, double* vr, const int* ldvr,
            double* work, const int* lwork, int* info, std::size_t, std::size_t);
void dgesvd_(const char* jobu, const char* jobvt, const int* m, const int* n, double* a,
             const int* lda, double* s, double* u, const int* ldu, double* vt, const int* ldvt,
             double* work, const int* lwork, int* info, std::size_t, std::size_t);
void dpotrf_(const char* uplo, const int* n, double* a, const int* lda, int* info, std::size_t);
void dgetrf_(const int* m, const int* n, double* a, const int* lda, int* ipiv, int* info);
void dgetri_(const int* n, double* a, const int* lda, const int* ipiv, double* work,
             const int* lwork, int* info);
void dgetrs_(const char* trans, const int* n, const int* nrhs, const double* a, const int* lda,
             const int* ipiv, double* b, const int* ldb, int* info, std::size_t);
void dsyrk_(const char* uplo, const char* trans, const int* n, const int* k, const double* alpha,
            const double* a, const int* lda, const double* beta, double* c, const int* ldc,
            std::size_t, std::size_t);
void dgemm_(const char* transa, const char* transb, const int* m, const int* n, const int* k,
            const double* alpha, const double* a, const int* lda, const double* b, const int* ldb,
            const double* beta, double* c, const int* ldc, std::size_t, std::size_t);
}

namespace lcp {

namespace {

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr int ONE = 1;
constexpr int QUERY = -1; // as a work length, asks LAPACK for the optimum

// Complex work arrays: the most that a call for a line matrix gets of the optimum, and room for the
// blocked reflectors of a reduction (blocks of up to 32 columns) plus the triangular factor of a
// block.
constexpr int MATRIXWORK = 1000;
constexpr int REDUCTIONWORK = 64 * MAXINV + 65 * 64;
constexpr int COLUMNWORK = 96; // for eigenvectors: too small for blocks
Complex complexWork[REDUCTIONWORK];
double realPartWork[3 * LDMAT];

// The minimum for singular values at full capacity; eigenvalues get LSWORK.
constexpr int REALWORK = std::max({LSWORK, 3 * LSROWS + MAXCOLUMNS, 5 * LSROWS});
double realWork[REALWORK];

// The work length that a query returned, limited to that of a line matrix.
int answeredLength(int least) {
  return std::max(std::clamp(static_cast<int>(complexWork[0].real()), 1, MATRIXWORK), least);
}

} // namespace

bool ZGEEV(CView A, ModeComplex& W, CView VR, int n, BackSubstitution how) {
  Complex none = 0; // left eigenvectors, not computed
  int info = 0;
  const auto call = [&](int lwork) {
    zgeev_("N", "V", &n, A.first, &A.ld, W.data(), &none, &ONE, VR.first, &VR.ld, complexWork,
           &lwork, realPartWork, &info, 1, 1);
  };
  if (how == BackSubstitution::ByBlocks) call(QUERY);
  call(how == BackSubstitution::ByBlocks ? answeredLength(2 * n) : std::max(COLUMNWORK, 2 * n));
  return info == 0;
}

namespace {

void hermitian(const char* vectors, CView A, double* W, int n) {
  if (!allFinite(A, n)) {
    std::fill_n(W, n, NaN);
    return;
  }
  int info = 0;
  zheev_(vectors, "U", &n, A.first, &A.ld, W, complexWork, &MATRIXWORK, realPartWork, &info, 1, 1);
}

} // namespace

void ZHEEV(CView A, double* W, int n) { hermitian("N", A, W, n); }

void ZHEEVECTORS(CView A, double* W, int n) { hermitian("V", A, W, n); }

void ZGEHRD(CView A, CView Q, int n) {
  static Table<Complex, MAXINV> tau;
  int info = 0;
  zgehrd_(&n, &ONE, &n, A.first, &A.ld, tau.data(), complexWork, &REDUCTIONWORK, &info);
  copyCorner(Q, A, n);
  zunghr_(&n, &ONE, &n, Q.first, &Q.ld, tau.data(), complexWork, &REDUCTIONWORK, &info);
}

bool ZGETRF(CView A, int n, ModeInts& IPIV) {
  int info = 0;
  zgetrf_(&n, &n, A.first, &A.ld, IPIV.data(), &info);
  return info == 0;
}

bool ZGETRI(CView A, int n, const ModeInts& IPIV) {
  int info = 0;
  zgetri_(&n, A.first, &A.ld, IPIV.data(), complexWork, &QUERY, &info);
  const int lwork = answeredLength(n);
  zgetri_(&n, A.first, &A.ld, IPIV.data(), complexWork, &lwork, &info);
  return info == 0;
}

namespace {

bool anyNaN(RConstView A, int n) {
  for (int c = 1; c <= n; ++c) {
    if (lcp::anyNaN(A.column(c), n)) return true;
  }
  return false;
}

} // namespace

void DGEEV(RView A, int n, Table<double, NPMAX>& WR, Table<double, NPMAX>& WI) {
  double none = 0;                 // eigenvectors, not computed
  int info = anyNaN(A, n) ? 1 : 0; // LAPACK may end the process on a NaN
  if (info == 0) {
    dgeev_("N", "N", &n, A.first, &A.ld, WR.data(), WI.data(), &none, &ONE, &none, &ONE, realWork,
           &LSWORK, &info, 1, 1);
  }
  if (info == 0) return;
  std::fill_n(WR.data(), n, NaN);
  std::fill_n(WI.data(), n, 0.0);
}

void DGESVD(RView A, int m, int n, Table<double, LSROWS>& S, RView U, RView VT) {
  const int lwork = std::max({1, 3 * std::min(m, n) + std::max(m, n), 5 * std::min(m, n)});
  int info = 0;
  dgesvd_("S", "S", &m, &n, A.first, &A.ld, S.data(), U.first, &U.ld, VT.first, &VT.ld, realWork,
          &lwork, &info, 1, 1);
}

void DPOTRF(RView A, int n) {
  int info = 0;
  dpotrf_("U", &n, A.first, &A.ld, &info, 1);
}

void DGETRF(RView A, int n, int* IPIV) {
  int info = 0;
  dgetrf_(&n, &n, A.first, &A.ld, IPIV, &info);
}

void DGETRI(RView A, int n, const int* IPIV, double* work, int lwork) {
  int info = 0;
  dgetri_(&n, A.first, &A.ld, IPIV, work, &lwork, &info);
}

void DGETRS(RConstView A, int n, const int* IPIV, double* b) {
  int info = 0;
  dgetrs_("N", &n, &ONE, A.first, &A.ld, IPIV, b, &n, &info, 1);
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

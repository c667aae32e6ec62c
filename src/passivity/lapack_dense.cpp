#include "passivity/lapack_dense.h"

extern "C" {
void dpotrf_(const char* uplo, const int* n, double* a, const int* lda, int* info, std::size_t);
void dgetrf_(const int* m, const int* n, double* a, const int* lda, int* ipiv, int* info);
void dgetri_(const int* n, double* a, const int* lda, const int* ipiv, double* work,
             const int* lwork, int* info);
void dgetrs_(const char* trans, const int* n, const int* nrhs, const double* a, const int* lda,
             const int* ipiv, double* b, const int* ldb, int* info, std::size_t);
}

namespace lcp {

int DPOTRF(RView A, int n) {
  int info = 0;
  dpotrf_("U", &n, A.first, &A.ld, &info, 1);
  return info;
}

int DGETRF(RView A, int n, int* IPIV) {
  int info = 0;
  dgetrf_(&n, &n, A.first, &A.ld, IPIV, &info);
  return info;
}

int DGETRI(RView A, int n, const int* IPIV, double* work, int lwork) {
  int info = 0;
  dgetri_(&n, A.first, &A.ld, IPIV, work, &lwork, &info);
  return info;
}

int DGETRS(RConstView A, int n, const int* IPIV, double* b) {
  const int one = 1;
  int info = 0;
  dgetrs_("N", &n, &one, A.first, &A.ld, IPIV, b, &n, &info, 1);
  return info;
}

} // namespace lcp

#include "kernels/lapack_complex.h"

#include "store/capacities.h"

#include <algorithm>

extern "C" {
void zgehrd_(const int* n, const int* ilo, const int* ihi, lcp::Complex* a, const int* lda,
             lcp::Complex* tau, lcp::Complex* work, const int* lwork, int* info);
void zunghr_(const int* n, const int* ilo, const int* ihi, lcp::Complex* a, const int* lda,
             const lcp::Complex* tau, lcp::Complex* work, const int* lwork, int* info);
}

namespace lcp {

namespace {

// Room for blocked reflectors of up to 32 columns beside the triangular factor of a block.
constexpr int WORKLENGTH = 64 * MAXINV + 65 * 64;

} // namespace

void ZGEHRD(CView A, CView Q, int n) {
  static Table<Complex, WORKLENGTH> work;
  static Table<Complex, MAXINV> tau;
  const int first = 1;
  int info = 0;
  zgehrd_(&n, &first, &n, A.first, &A.ld, tau.data(), work.data(), &WORKLENGTH, &info);
  for (int j = 1; j <= n; ++j) std::copy_n(A.column(j), n, Q.column(j));
  zunghr_(&n, &first, &n, Q.first, &Q.ld, tau.data(), work.data(), &WORKLENGTH, &info);
}

} // namespace lcp

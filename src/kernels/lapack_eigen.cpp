#include "kernels/lapack_eigen.h"

#include <algorithm>

extern "C" void zgeev_(const char* jobvl, const char* jobvr, const int* n, lcp::Complex* a,
                       const int* lda, lcp::Complex* w, lcp::Complex* vl, const int* ldvl,
                       lcp::Complex* vr, const int* ldvr, lcp::Complex* work, const int* lwork,
                       double* rwork, int* info, std::size_t, std::size_t);

namespace lcp {

namespace {

constexpr int WORKSIZE = 96; // the least that LAPACK asks for is 2 n
LineMatrix left;             // left vectors, which nothing reads

} // namespace

void ZGEEV(CView A, ModeComplex& W, CView VR, int n) {
  static Complex work[std::max(WORKSIZE, 2 * LDMAT)];
  static double rwork[2 * LDMAT];
  const int lwork = std::max(WORKSIZE, 2 * n);
  int info = 0;
  zgeev_("V", "V", &n, A.first, &A.ld, W.data(), left.elements, &LDMAT, VR.first, &VR.ld, work,
         &lwork, rwork, &info, 1, 1);
}

} // namespace lcp

// Travelling waves between two ends with characteristic admittance Yc and propagation H give
//
//   Y11 = (I - H^2)^-1 (I + H^2) Yc        own admittance of an end
//   Y12 = -2 (I - H^2)^-1 H Yc             mutual admittance
//
// Their sum and difference, for ends driven in phase and in opposition, are (I + H)^-1 (I - H) Yc
// and (I - H)^-1 (I + H) Yc.
#include "passivity/nodal_admittance.h"

#include "fit/partial_fractions.h"
#include "kernels/inversion.h"
#include "kernels/matrix_kernels.h"

#include <cmath>

namespace lcp {

void poleFactors(Complex s, Table<Complex, MAXORDER>& factor) {
  const EnforcementStore& E = ENFORCE;
  double tau = 0;
  Complex delay = 1;
  for (int m = 1; m <= E.TOTORD; ++m) {
    if (E.FTAU[m] != tau) { // poles of a group are adjacent
      tau = E.FTAU[m];
      delay = std::exp(-s * tau);
    }
    factor[m] = delay * poleTerm(s, E.FPOLE[m]);
  }
}

void propagationAt(const ResidueList& RES, Complex s, CView H) {
  static Table<Complex, MAXORDER> factor;
  poleFactors(s, factor);
  clear(H, ENFORCE.NC);
  for (int m = 1; m <= ENFORCE.TOTORD; ++m) addTimes(H, factor[m], RES[m], ENFORCE.NC);
}

void characteristicAt(Complex s, bool singleConstant, CView Yc) {
  const EnforcementStore& E = ENFORCE;
  for (int c = 1; c <= E.NC; ++c) {
    for (int r = 1; r <= E.NC; ++r) Yc(r, c) = singleConstant ? single(E.EDY(r, c)) : E.EDY(r, c);
  }
  for (int m = 1; m <= E.ENY; ++m) addTimes(Yc, poleTerm(s, E.EPY[m]), E.ERY[m], E.NC);
}

void PASSYN(double f, CView Y11, CView Y12, Residues which) {
  static LineMatrix H, H2, Yc, P, X;
  const int n = ENFORCE.NC;
  const Complex s(0, SINGLETWOPI * f);
  characteristicAt(s, false, Yc);
  propagationAt(residuesOf(which), s, H);
  CMATMUL(H2, H, H, n);
  for (int c = 1; c <= n; ++c) {
    for (int r = 1; r <= n; ++r) {
      P(r, c) = -H2(r, c);
      H(r, c) *= -2.0;
    }
    P(c, c) += 1.0;
    H2(c, c) += 1.0;
  }
  INVCJD(P, P, n);
  CMATMUL(X, H2, Yc, n);
  CMATMUL(Y11, P, X, n);
  CMATMUL(X, H, Yc, n);
  CMATMUL(Y12, P, X, n);
}

} // namespace lcp

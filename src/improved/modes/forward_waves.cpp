// For a forward travelling wave V = (ZM / gamma) I. Since gamma^2 = YM ZM, the principal root of ZM
// / YM is either this value or its negative: where the quotient crosses the negative real axis the
// root changes sign, which no fit can follow.
#include "improved/modes/forward_waves.h"

#include "base/constants.h"
#include "kernels/hyperbolic.h"
#include "store/rundata.h"
#include "store/solvedata.h"

namespace lcp {

void formSurgeImpedancesImproved(int k) {
  SecondLoopStore& T = SOLVEDATA.second;
  for (int i = 1; i <= RUNDATA.line.NC; ++i) {
    const Complex forward = T.ZM(i, i) / T.GAM[i];
    if (!((T.ZSURGE[i] * std::conj(forward)).real() < 0.0)) continue;
    T.ZSURGE[i] = -T.ZSURGE[i];
    T.ZSURGER[i] = T.ZSURGE[i].real();
    T.ZSURGST(k, i) = T.ZSURGE[i];
    T.ZSARG(k, i) = PHASE2(T.ZSURGE[i].imag(), T.ZSURGE[i].real()) * DEGREES;
  }
}

} // namespace lcp

// A wave that travels forward has V = (ZM / gamma) I. Since gamma^2 = YM ZM the principal root of
// ZM / YM is that or its negative: where the quotient crosses the negative axis it changes from one
// to the other, which no fit can follow.
//
// A mode whose impedance has a negative resistance gains on its way. The model takes the conjugate
// of its gamma^2 and has it lose as much: the admittance stays, the impedance becomes gamma^2 / YM,
// and so its surge impedance gamma / YM. Yc = TI 1/Zs TI^T holds of these modes as of the others.
#include "improved/modes/forward_waves.h"

#include "base/constants.h"
#include "kernels/hyperbolic.h"
#include "modal/modal_transform.h"
#include "store/rundata.h"
#include "store/solvedata.h"

namespace lcp {

Complex forwardSurgeImpedance(Complex YM, Complex ZM, Complex square, Complex gamma) {
  if (square.imag() < 0.0) return gamma / YM;
  const Complex root = surgeImpedance(YM, ZM);
  return (root * std::conj(ZM / gamma)).real() < 0.0 ? -root : root;
}

void formSurgeImpedancesImproved(int k) {
  SecondLoopStore& T = SOLVEDATA.second;
  for (int i = 1; i <= RUNDATA.line.NC; ++i) {
    const Complex forward =
        forwardSurgeImpedance(T.YM(i, i), T.ZM(i, i), SOLVEDATA.at.MEIG(k, i), T.GAM[i]);
    if (forward == T.ZSURGE[i]) continue;
    T.ZSURGE[i] = forward;
    T.ZSURGER[i] = T.ZSURGE[i].real();
    T.ZSURGST(k, i) = T.ZSURGE[i];
    T.ZSARG(k, i) = PHASE2(T.ZSURGE[i].imag(), T.ZSURGE[i].real()) * DEGREES;
  }
}

} // namespace lcp

// A wave that travels forward has V = (ZM / gamma) I. Since gamma^2 = YM ZM the default's principal
// root of ZM / YM is that or its negative: where the quotient crosses the negative axis it changes
// from one to the other, which no fit can follow. With Improved Modes the fitted models have
// ZM / gamma throughout; Bergeron, which takes real parts, keeps the root.
#include "modal/surge_impedance.h"

#include "store/rundata.h"

#include <cmath>

namespace lcp {

Complex surgeImpedance(Complex YM, Complex ZM, Complex gamma) {
  const ModelChoice& M = RUNDATA.model;
  const Complex root = std::sqrt(ZM / YM);
  if (!RUNDATA.numerics.IMPROVEDMODES || !(M.MODFDM() || M.MODFDP())) return root;
  const Complex forward = ZM / gamma;
  return (root * std::conj(forward)).real() < 0.0 ? -root : root;
}

} // namespace lcp

// What holds before the first test. Tests fill stores by hand, of any order and before a solve:
// they are mapped for the largest. Numbers are computed in the program's floating-point mode, in
// which a denormal number is 0.
#include "fit/fitted_curves.h"
#include "fit/series_fit.h"
#include "run/lcpmain.h"
#include "store/fitmodel.h"
#include "store/solvedata.h"

namespace lcp::test {

[[maybe_unused]] const bool PREPARED = [] {
  mapCurves(SOLVEDATA, LDMAT);
  mapResidues(FITMODEL, LDMAT);
  for (auto* curves : {&FITTED.YC, &FITTED.H, &SERIESMODEL.ZFIT}) curves->map(LDMAT);
  SERIESMODEL.ZFR.map(LDMAT);
  flushDenormals();
  return true;
}();

} // namespace lcp::test

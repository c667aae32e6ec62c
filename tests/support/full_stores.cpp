// Tests fill stores by hand, of any order and before a solve: they are mapped for the largest.
#include "fit/fitted_curves.h"
#include "fit/series_fit.h"
#include "store/fitmodel.h"
#include "store/solvedata.h"

namespace lcp::test {

[[maybe_unused]] const bool MAPPED = [] {
  mapCurves(SOLVEDATA, LDMAT);
  mapResidues(FITMODEL, LDMAT);
  for (auto* curves : {&FITTED.YC, &FITTED.H, &SERIESMODEL.ZFIT}) curves->map(LDMAT);
  SERIESMODEL.ZFR.map(LDMAT);
  return true;
}();

} // namespace lcp::test

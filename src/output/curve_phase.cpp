#include "output/curve_phase.h"

#include "fit/fitted_curves.h"
#include "store/fitmodel.h"

namespace lcp {

namespace {

using enum CurveId;
using enum Part;

constexpr double NOTHING = 1e-32; // magnitude below which a modal function is shown as 0

template <Part P> double shown(Complex z) {
  const double part = partOf<P>(z);
  return P == MAGNITUDE && part < NOTHING ? 0.0 : part;
}

template <Part P> void writeGroups(CurveId id, CurveSteps steps) {
  CurveFile file;
  if (!file.open(id)) return;
  for (int k = steps.first; k <= steps.last; ++k) {
    startRow(file, RowFrequency::FIT, k);
    for (int g = 1; g <= FITMODEL.NGROUP; ++g) {
      file.value(shown<P>(FITTED.GROUP(k, g)));
      file.value(shown<P>(FITTED.GROUPFIT(k, g)));
    }
    file.endRow();
  }
  file.close();
}

} // namespace

void writeAdmittanceFit(CurveSteps steps) {
  writeElementPairs<MAGNITUDE>(YCMP, SOLVEDATA.second.YCST, FITTED.YC, steps);
  writeElementPairs<ANGLE>(YCPP, SOLVEDATA.second.YCST, FITTED.YC, steps);
}

void writeGroupFits(CurveSteps steps) {
  writeGroups<MAGNITUDE>(HMM, steps);
  writeGroups<ANGLE>(HPM, steps);
}

void writePropagationFit(CurveSteps steps) {
  writeElementPairs<MAGNITUDE>(HMP, SOLVEDATA.second.HST, FITTED.H, steps);
  writeElementPairs<ANGLE>(HPP, SOLVEDATA.second.HST, FITTED.H, steps);
}

void writeSeriesFit(const ElementCurves& ZFIT, CurveSteps steps) {
  writeElements<MAGNITUDE>(ZMF, ZFIT, steps, RowFrequency::FIT);
  writeElements<ANGLE>(ZPF, ZFIT, steps, RowFrequency::FIT);
}

} // namespace lcp

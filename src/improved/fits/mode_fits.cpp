#include "improved/fits/mode_fits.h"

#include "base/console.h"
#include "base/constants.h"
#include "base/number_forms.h"
#include "fit/fit_console.h"
#include "fit/mode_model.h"
#include "improved/fits/between_points.h"
#include "improved/fits/settled_fit.h"
#include "store/rundata.h"

namespace lcp {

namespace {

FitSamples samplesOf(const ComplexCurve& F, int ASYMP) {
  const FrequencyGrid& G = SOLVEDATA.grid;
  return {G.NFUSE, 1, G.WFREQ, &F, G.WFIT, FLIPUNSTABLE, ASYMP};
}

BetweenCurve middlesOf(const ComplexCurve& F) { return {BETWEEN.NB, BETWEEN.WFREQ, &F}; }

void surgeImpedance(int m) {
  const FitOptions& O = RUNDATA.fit;
  console::print(SURGELINE, integerField(m, 2));
  GROWSETTLED(samplesOf(SOLVEDATA.second.ZSURGST.curve(m), WITHCONSTANT),
              middlesOf(BETWEEN.ZSURGE.curve(m)), O.MAXPZ, O.ERRZ * PERCENT, MODEMODEL.Z[m]);
  warnOfMiss("The Surge Impedance", MODEMODEL.Z[m].ERR, O.ERRZ * PERCENT);
}

void attenuation(int m) {
  SecondLoopStore& T = SOLVEDATA.second;
  const FrequencyGrid& G = SOLVEDATA.grid;
  const FitOptions& O = RUNDATA.fit;
  const double target = O.ERRA * PERCENT;
  console::print(ATTENUATIONLINE, integerField(m, 2));
  const BodeDelay first =
      BODEDLY(T.VELOC.curve(m), T.HMODE.curve(m), G.NFUSE, G.WFREQ, RUNDATA.run.LINELEN, target);
  const double TAU =
      DELAYSETTLED(samplesOf(T.HMODE.curve(m), NOASYMPTOTE), middlesOf(BETWEEN.HMODE.curve(m)),
                   first, O.MAXPA, target, MODEMODEL.A[m]);
  T.TAUMS[m] = INMILLI * TAU;
  turnBack(m, TAU);
  warnOfMiss("The Attenuation Constant", MODEMODEL.A[m].ERR, target);
}

void transformElement(int m, int r) {
  const FitOptions& O = RUNDATA.fit;
  if (constantElement(m, r)) return;
  console::print("Transform Element {},{}:", integerField(m, 2), integerField(r, 2));
  GROWSETTLED(samplesOf(SOLVEDATA.second.TIST.curve(m, r), WITHCONSTANT),
              middlesOf(BETWEEN.TI.curve(m, r)), O.MAXP4, O.ERR4 * PERCENT, MODEMODEL.T(m, r));
  warnOfMiss("The Transform Element", MODEMODEL.T(m, r).ERR, O.ERR4 * PERCENT);
}

} // namespace

void fitModesImproved() {
  const int n = RUNDATA.line.NC;
  sampleModesBetween();
  printModeFitsHeading();
  for (int m = 1; m <= n; ++m) {
    surgeImpedance(m);
    attenuation(m);
    for (int r = 1; r <= n; ++r) transformElement(m, r);
  }
}

} // namespace lcp

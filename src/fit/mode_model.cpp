#include "fit/mode_model.h"

#include "base/console.h"
#include "base/constants.h"
#include "base/number_forms.h"
#include "fit/growing_fit.h"
#include "store/rundata.h"

#include <cmath>

namespace lcp {

namespace {

constexpr double TURN = 360.0; // degrees

void signElement(int i, int r) {
  SecondLoopStore& T = SOLVEDATA.second;
  if (T.TISUM(i, r) > 0) return;
  for (int k = 1; k <= SOLVEDATA.grid.NFREQ; ++k) {
    double& angle = T.TIARG(k, i, r);
    T.TIMAG(k, i, r) = -T.TIMAG(k, i, r);
    angle += 180.0;
    if (angle > 270.0) angle -= 360.0;
  }
}

} // namespace

void turnBack(int i, double TAU) {
  const FrequencyGrid& G = SOLVEDATA.grid;
  for (int k = 1; k <= G.NFREQ; ++k) {
    double& angle = SOLVEDATA.second.HARG(k, i);
    angle = std::fmod(angle + TURN * G.FREQ[k] * TAU, TURN);
    if (angle > 0) angle -= TURN;
  }
}

void fitSurgeImpedance(int i) {
  const FrequencyGrid& G = SOLVEDATA.grid;
  const FitOptions& O = RUNDATA.fit;
  console::print(SURGELINE, integerField(i, 2));
  GROWFIT(G.NFUSE, G.WFREQ, SOLVEDATA.second.ZSURGST.curve(i), G.WFIT, O.MAXPZ, O.ERRZ * PERCENT,
          MODEMODEL.Z[i]);
}

void fitAttenuation(int i) {
  SecondLoopStore& T = SOLVEDATA.second;
  const FrequencyGrid& G = SOLVEDATA.grid;
  const FitOptions& O = RUNDATA.fit;
  console::print(ATTENUATIONLINE, integerField(i, 2));
  const double TAU = DELAYFIT(G.NFUSE, G.WFREQ, T.HMODE.curve(i), T.VELOC.curve(i), G.WFIT,
                              RUNDATA.run.LINELEN, O.MAXPA, O.ERRA * PERCENT, MODEMODEL.A[i]);
  T.TAUMS[i] = INMILLI * TAU;
  turnBack(i, TAU);
}

bool constantElement(int i, int r) {
  RationalFit& element = MODEMODEL.T(i, r);
  signElement(i, r);
  if (!RUNDATA.fit.CONSTT) return false;
  element.N = 0;
  element.D = SOLVEDATA.second.TIMAG(SOLVEDATA.grid.NFREQ, i, r);
  return true;
}

void fitTransformElement(int i, int r) {
  const FrequencyGrid& G = SOLVEDATA.grid;
  const FitOptions& O = RUNDATA.fit;
  if (constantElement(i, r)) return;
  console::print("Transform Element {},{}:", integerField(i, 2), integerField(r, 2));
  GROWFIT(G.NFUSE, G.WFREQ, SOLVEDATA.second.TIST.curve(i, r), G.WFIT, O.MAXP4, O.ERR4 * PERCENT,
          MODEMODEL.T(i, r));
}

void printModeFitsHeading() {
  console::line(" FITTING ERROR                # OF POLES");
  console::line(" -------------                ----------");
}

void fitModes() {
  const int n = RUNDATA.line.NC;
  printModeFitsHeading();
  for (int m = 1; m <= n; ++m) {
    fitSurgeImpedance(m);
    fitAttenuation(m);
    for (int r = 1; r <= n; ++r) fitTransformElement(m, r);
  }
}

} // namespace lcp

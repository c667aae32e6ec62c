// Vector fitting in three passes from poles spaced evenly over the logarithm of the frequency. Each
// pole count starts from new poles and, for a propagation function, from the first delay and an
// empty table.
#include "fit/growing_fit.h"

#include "base/console.h"
#include "base/number_forms.h"
#include "fit/bode_delay.h"
#include "fit/delay_search.h"
#include "fit/fit_console.h"

#include <algorithm>
#include <cmath>

namespace lcp {

namespace {

constexpr int PASSES = 3;
constexpr double DELAYUP = 1.2; // bounds of the delay search relative to the first delay
constexpr double DELAYLOW = 0.8;
constexpr double FIRSTSTEP = 0.5; // first step of the search relative to the delay correction

constinit FunctionFit model{}; // for the current number of poles

bool finished(const RationalFit& FIT, int NMAX, double TARGET) {
  return FIT.ERR <= TARGET || FIT.N >= std::min(NMAX, NPMAX);
}

void finish(RationalFit& FIT) {
  if (!std::isfinite(FIT.ERR)) refuseFit("The Fit of a Mode gives no Finite Numbers!");
  FIT.D = model.D;
  std::copy_n(model.R.data(), FIT.N, FIT.R.data());
  console::print(" {}{}", FIT.ERR, integerField(FIT.N, 12));
}

} // namespace

void GROWFIT(int NS, const FreqCurve& WFREQ, const ComplexCurve& F, const FreqCurve& WFIT, int NMAX,
             double TARGET, RationalFit& FIT) {
  const FitSamples Q = {NS, 1, WFREQ, &F, WFIT, FLIPUNSTABLE, WITHCONSTANT};
  FitErrors errors;
  FIT.N = 0;
  do {
    FIT.N += 1;
    startingPoles(FIT.P, FIT.N, WFREQ[1], WFREQ[NS]);
    VFITPASSES(PASSES, Q, FIT.N, FIT.P, &model, errors);
    FIT.ERR = errors.ERRNORM;
  } while (!finished(FIT, NMAX, TARGET));
  finish(FIT);
}

double DELAYFIT(int NS, const FreqCurve& WFREQ, const ComplexCurve& F, const FreqCurve& V,
                const FreqCurve& WFIT, double LEN, int NMAX, double TARGET, RationalFit& FIT) {
  const FitSamples Q = {NS, 1, WFREQ, &F, WFIT, FLIPUNSTABLE, NOASYMPTOTE};
  const BodeDelay first = BODEDLY(V, F, NS, WFREQ, LEN, TARGET);
  DelaySearch search;
  FitErrors errors;
  FIT.N = 0;
  do {
    FIT.N += 1;
    startingPoles(FIT.P, FIT.N, WFREQ[1], WFREQ[NS]);
    // compared with 0, no error is lower: the first step becomes minus a quarter of the correction
    search = {first.TAU, first.CORR * FIRSTSTEP, 0.0, DELAYUP * first.TAU, DELAYLOW * first.TAU};
    DelayTable tried;
    SEARCHDELAY(search, tried, Q, FIT.N, FIT.P, model, errors);
    FIT.ERR = errors.ERRNORM;
  } while (!finished(FIT, NMAX, TARGET));
  finish(FIT);
  return search.tau;
}

} // namespace lcp

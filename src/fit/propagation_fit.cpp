#include "fit/propagation_fit.h"

#include "base/constants.h"
#include "fit/dc_values.h"
#include "fit/delay_groups.h"
#include "fit/fit_console.h"
#include "fit/order_reduction.h"
#include "fit/propagation_tables.h"
#include "store/rundata.h"

#include <algorithm>
#include <cmath>

namespace lcp {

namespace {

constexpr double FIRSTTARGET = 0.25;
constexpr double TARGETFACTOR = 0.5; // from one attempt to the next

void checkFinite(const PhaseFit& fit) {
  if (std::isfinite(fit.MAXERR)) return;
  refuseFit("The Fit of the Propagation Function gives no Finite Numbers!");
}

// Lowers the target until the error is met or no group can take another pole. The poles of a group
// change only if its error is above the target, so an attempt may change nothing.
PhaseFit runAttempts(const PropagationWish& wish) {
  const int limit = std::min(wish.MAXPA, NPMAX);
  PhaseFit fit{};
  double TARGET = FIRSTTARGET;
  for (int attempt = 1;; ++attempt, TARGET *= TARGETFACTOR) {
    printAttempt(attempt, TARGET);
    if (attempt == 1) FORMGROUPS();
    const bool changed = HMODEFIT(TARGET, limit);
    if (changed || attempt == 1) fit = HPHASEFIT(DCNONE, nullptr, false);
    checkFinite(fit);
    printPhaseFit(fit);
    if (fit.MAXERR <= wish.ERRA * PERCENT || !groupsCanGrow(limit)) return fit;
  }
}

} // namespace

void HFIT(const PropagationWish& wish) {
  FITMODEL.NC = RUNDATA.line.NC;
  printPropagationHeading(wish.ERRA, wish.MAXPA);
  PhaseFit fit = runAttempts(wish);
  if (fit.RATIO > wish.RPRATIO) fit = REDUCEORDER(wish.RPRATIO);
  if (wish.DCCORR < DCCONSTRAINED) {
    printFitEnd();
    return;
  }
  printCorrectionHeading();
  fit = HPHASEFIT(wish.DCCORR, wish.HDC, false);
  checkFinite(fit);
  printFinalFit(fit);
}

} // namespace lcp

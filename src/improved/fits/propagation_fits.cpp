#include "improved/fits/propagation_fits.h"

#include "base/big_store.h"
#include "base/constants.h"
#include "base/finite.h"
#include "fit/dc_pole.h"
#include "fit/dc_values.h"
#include "fit/delay_groups.h"
#include "fit/fit_console.h"
#include "fit/fit_driver.h"
#include "fit/fit_store.h"
#include "fit/matrix_fit.h"
#include "fit/phase_residues.h"
#include "fit/propagation_tables.h"
#include "improved/fits/between_points.h"
#include "improved/fits/group_fits.h"
#include "store/rundata.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace lcp {

namespace {

constexpr double FIRSTTARGET = 0.25;
constexpr double FARTARGET = 4;      // target over the requested error at which no attempt meets it
constexpr double TARGETFACTOR = 0.5; // from one attempt to the next
constexpr int IDLEATTEMPTS = 4;      // successive attempts without improvement that end the search
constexpr double GAIN = 0.95; // error relative to the best so far that counts as an improvement

constexpr PoleFrame DELAYED{false, false, false, true};
constexpr int STEPS = 15; // of the poles

struct HStore {
  PoleSet set, trial;

  // H at the fit points followed by those between: all count in residues and errors.
  int NS;
  FreqCurve WFREQ, WFIT;
  CurveMatrix<Complex, MAXFREQ> H, FIT;
  PoleTargets targets;
};
HStore& STORE = bigStore<HStore>();

// --- samples and errors of the model in FITMODEL

void gatherSamples() {
  const FrequencyGrid& G = SOLVEDATA.grid;
  STORE.H.map(FITMODEL.NC);
  STORE.FIT.map(FITMODEL.NC);
  STORE.NS = std::min(G.NFUSE + BETWEEN.NB, MAXFREQ);
  const double way = G.WFREQ[G.NFUSE] - G.WFREQ[1]; // negative on a descending grid
  for (int k = 1, below = 1; k <= STORE.NS; ++k) {
    const bool between = k > G.NFUSE;
    STORE.WFREQ[k] = between ? BETWEEN.WFREQ[k - G.NFUSE] : G.WFREQ[k];
    while (between && below < G.NFUSE && (STORE.WFREQ[k] - G.WFREQ[below + 1]) * way > 0) ++below;
    STORE.WFIT[k] = G.WFIT[between ? below : k];
    for (int c = 1; c <= FITMODEL.NC; ++c) {
      for (int r = 1; r <= FITMODEL.NC; ++r)
        STORE.H(k, r, c) = between ? BETWEEN.H(k - G.NFUSE, r, c) : SOLVEDATA.second.HST(k, r, c);
    }
  }
  const int n = FITMODEL.NC;
  beginTargets(STORE.targets, STORE.NS, STORE.WFREQ, STORE.WFIT, n * n);
  for (int i = 0; i < n * n; ++i)
    addTarget(STORE.targets, i + 1, STORE.H.curve(i / n + 1, i % n + 1).steps);
}

// Adds pole m of group g to the model at the samples.
void addPole(int g, int m) {
  static ComplexCurve u;
  poleCurve(FITMODEL.HPOLE[g][m], STORE.WFREQ, STORE.NS, u);
  for (int k = 1; k <= STORE.NS; ++k) {
    const double turn = STORE.WFREQ[k] * FITMODEL.TAU[g];
    u[k] *= Complex(std::cos(turn), -std::sin(turn));
  }
  for (int c = 1; c <= FITMODEL.NC; ++c) {
    for (int r = 1; r <= FITMODEL.NC; ++r)
      addTimes(FITMODEL.HRES[g](r, c)[m], u, STORE.NS, STORE.FIT.curve(r, c));
  }
}

PhaseFit deviations() {
  PhaseFit fit{};
  for (int c = 1; c <= FITMODEL.NC; ++c) {
    for (int r = 1; r <= FITMODEL.NC; ++r)
      countDeviation(fit, STORE.FIT.curve(r, c), STORE.H.curve(r, c), STORE.NS);
  }
  GroupInts leaders;
  fit.RATIO = POLERATIO(leaders);
  return fit;
}

// Copies the fitted H to the curves for the detail files.
void storeFittedCurves() {
  for (int c = 1; c <= FITMODEL.NC; ++c) {
    for (int r = 1; r <= FITMODEL.NC; ++r)
      std::copy_n(STORE.FIT.curve(r, c).steps, SOLVEDATA.grid.NFUSE, FITTED.H.curve(r, c).steps);
  }
}

// Fits the residues over the poles of the set, including a DC correction of type 1.
PhaseFit fitPhases(const PoleSet& S, const PropagationWish& wish) {
  for (int g = 1; g <= FITMODEL.NGROUP; ++g) {
    FITMODEL.NH[g] = S.NH[g];
    FITMODEL.TAU[g] = S.TAU[g];
    std::copy_n(S.HPOLE[g].data(), S.NH[g], FITMODEL.HPOLE[g].data());
  }
  const int DCTYPE = wish.DCCORR == DCCONSTRAINED ? DCCONSTRAINED : DCNONE;
  const PhaseFit fit =
      HPHASEFIT({STORE.NS, STORE.WFREQ, STORE.WFIT, STORE.H, STORE.FIT}, DCTYPE, wish.HDC, false);
  if (!std::isfinite(fit.MAXERR))
    refuseFit("The Fit of the Propagation Function gives no Finite Numbers!");
  return fit;
}

PhaseFit fitCounts(const GroupInts& NH, const PropagationWish& wish) {
  takeGroupFits(NH, STORE.set);
  MOVEPOLES(STORE.targets, DELAYED, STEPS, STORE.set);
  return fitPhases(STORE.set, wish);
}

// --- attempts

void printGroupAttempt(int attempt, double TARGET, const GroupInts& NH, const PhaseFit& fit) {
  printAttempt(attempt, TARGET);
  printModeHeading();
  for (int g = 1; g <= FITMODEL.NGROUP; ++g)
    printModeRow(g, groupError(g, NH[g]), NH[g], FITMODEL.TAU[g]);
  printPhaseFit(fit);
}

// Removes poles from the groups in turn, as long as the requested error is met.
PhaseFit giveUpPoles(GroupInts& NH, const PropagationWish& wish) {
  Table<bool, NGMAX> needed{}; // all remaining poles of the group are needed
  for (bool given = true; given;) {
    given = false;
    for (int g = 1; g <= FITMODEL.NGROUP; ++g) {
      if (NH[g] == 1 || needed[g]) continue;
      --NH[g];
      if (fitCounts(NH, wish).MAXERR <= wish.ERRA * PERCENT) {
        given = true;
      } else {
        ++NH[g];
        needed[g] = true;
      }
    }
  }
  return fitCounts(NH, wish);
}

struct Attempts {
  int attempt = 0;
  int idle = 0;
  GroupInts NH{};   // of the current attempt
  GroupInts best{}; // of the best attempt
  PhaseFit fit{}, bestFit{};
  double bestTarget = 0;
};

// Records an attempt. It counts as idle only if the target of the groups is within the requested
// error.
void noteAttempt(Attempts& A, double TARGET, double wish) {
  const bool first = A.attempt == 1;
  const bool gained = first || A.fit.MAXERR < GAIN * A.bestFit.MAXERR;
  A.idle = gained || TARGET > wish ? 0 : A.idle + 1;
  if (!first && !(A.fit.MAXERR < A.bestFit.MAXERR)) return;
  A.best = A.NH;
  A.bestFit = A.fit;
  A.bestTarget = TARGET;
}

// Makes the best attempt the model, printed last.
PhaseFit takeBest(Attempts& A, const PropagationWish& wish) {
  if (std::equal(A.NH.data(), A.NH.data() + FITMODEL.NGROUP, A.best.data())) return A.fit;
  A.fit = fitCounts(A.best, wish);
  printGroupAttempt(A.attempt + 1, A.bestTarget, A.best, A.fit);
  return A.fit;
}

// Makes an attempt with the current numbers of poles; returns true if it ends the search.
bool makeAttempt(Attempts& A, double TARGET, const PropagationWish& wish) {
  ++A.attempt;
  A.fit = fitCounts(A.NH, wish);
  const bool met = A.fit.MAXERR <= wish.ERRA * PERCENT;
  if (met) A.fit = giveUpPoles(A.NH, wish);
  printGroupAttempt(A.attempt, TARGET, A.NH, A.fit);
  noteAttempt(A, TARGET, wish.ERRA * PERCENT);
  return met || A.idle == IDLEATTEMPTS;
}

// First lowers the targets. If the groups have no better fits of their own, the requested error may
// still be missed, because a group is fitted to the mean of its modes: then each group gets one
// more pole.
PhaseFit runAttempts(const PropagationWish& wish, GroupInts& NH) {
  const int limit = std::min(wish.MAXPA, NPMAX);
  Attempts A;
  double TARGET = FIRSTTARGET;
  FORMGROUPS();
  startGroupFits();
  while (TARGET > FARTARGET * wish.ERRA * PERCENT && wish.ERRA > 0) TARGET *= TARGETFACTOR;
  bool done = false;
  for (; !done && (A.attempt == 0 || canImprove(limit, A.NH)); TARGET *= TARGETFACTOR) {
    if (growGroups(TARGET, limit, A.NH)) done = makeAttempt(A, TARGET, wish);
  }
  while (!done && addPoles(limit, A.NH)) done = makeAttempt(A, TARGET, wish);
  NH = A.best;
  return takeBest(A, wish);
}

// --- order reduction

struct RealPole {
  int g, m;
  double ratio;
};

double ratioOf(int g, int m) {
  double most = 0;
  for (int c = 1; c <= FITMODEL.NC; ++c) {
    for (int r = 1; r <= FITMODEL.NC; ++r)
      most = std::max(most, std::abs(FITMODEL.HRES[g](r, c)[m] / FITMODEL.HPOLE[g][m]));
  }
  return most;
}

using PoleMarks = Table<Table<double, MAXPOLES>, NGMAX>;

bool isMarked(const PoleMarks& kept, const GroupInts& marks, int g, double p) {
  const double* first = kept[g].data();
  return std::find(first, first + marks[g], p) != first + marks[g];
}

// The unmarked real pole of the set with the largest ratio; a ratio of 0 if there is none.
RealPole worstPole(const PoleSet& S, const PoleMarks& kept, const GroupInts& marks) {
  RealPole worst{0, 0, 0.0};
  for (int g = 1; g <= FITMODEL.NGROUP; ++g) {
    for (int m = 1; m <= S.NH[g]; ++m) {
      if (S.HPOLE[g][m].imag() != 0 || isMarked(kept, marks, g, S.HPOLE[g][m].real())) continue;
      const double ratio = ratioOf(g, m);
      if (ratio > worst.ratio) worst = {g, m, ratio};
    }
  }
  return worst;
}

void takeOut(PoleSet& S, int g, int m) {
  PoleTable& P = S.HPOLE[g];
  std::copy(P.data() + m, P.data() + S.NH[g], P.data() + m - 1);
  --S.NH[g];
}

// Removes real poles as long as the error allows. Returns how many remain above the limit.
int reduceOrder(const PropagationWish& wish, PhaseFit& fit) {
  static PoleMarks kept;
  GroupInts marks{};
  const double allowed = std::max(wish.ERRA * PERCENT, fit.MAXERR);
  int stay = 0;
  printReductionHeading();
  for (;;) {
    const RealPole worst = worstPole(STORE.set, kept, marks);
    if (!(worst.ratio > wish.RPRATIO)) break;
    STORE.trial = STORE.set;
    takeOut(STORE.trial, worst.g, worst.m);
    const PhaseFit without = fitPhases(STORE.trial, wish);
    if (without.MAXERR <= allowed) {
      STORE.set = STORE.trial;
      fit = without;
      continue;
    }
    kept[worst.g][++marks[worst.g]] = STORE.set.HPOLE[worst.g][worst.m].real();
    ++stay;
    fit = fitPhases(STORE.set, wish);
  }
  printReducedGroups();
  printPhaseFit(fit);
  return stay;
}

void warnOfRatios(int stay, const PropagationWish& wish) {
  if (stay == 0) return;
  warnInLine(fmt::format("{} Residue/Pole Ratios stay above {:.4g}: H needs their Poles for its "
                         "Fitting Error",
                         stay, wish.RPRATIO));
}

// --- the pole of a DC correction of type 2

double slowestPole() {
  double slowest = slowestOf(FITMODEL.HPOLE[1], FITMODEL.NH[1]);
  for (int g = 2; g <= FITMODEL.NGROUP; ++g)
    slowest = std::min(slowest, slowestOf(FITMODEL.HPOLE[g], FITMODEL.NH[g]));
  return slowest;
}

// The value of the model at s = 0, where delays have no effect.
double valueAtZero(int r, int c) {
  double sum = 0;
  for (int g = 1; g <= FITMODEL.NGROUP; ++g)
    sum -= ratioSum(FITMODEL.HPOLE[g], FITMODEL.HRES[g](r, c), FITMODEL.NH[g]);
  return sum;
}

// Adds the pole to group 1 and returns 0. If this raises the error above the requested one, the
// model is left unchanged and that error is returned.
double closeAtZero(const PropagationWish& wish, PhaseFit& fit) {
  const double a = dcPole(slowestPole());
  const int m = FITMODEL.NH[1] + 1;
  for (int c = 1; c <= FITMODEL.NC; ++c) {
    for (int r = 1; r <= FITMODEL.NC; ++r)
      FITMODEL.HRES[1](r, c)[m] = -a * ((*wish.HDC)(r, c) - valueAtZero(r, c));
  }
  FITMODEL.HPOLE[1][m] = a;
  FITMODEL.NH[1] = m;
  addPole(1, m);
  const PhaseFit corrected = deviations();
  if (corrected.MAXERR <= std::max(wish.ERRA * PERCENT, fit.MAXERR)) {
    fit = corrected;
    return 0.0;
  }
  fit = fitPhases(STORE.set, wish);
  return corrected.MAXERR;
}

} // namespace

void settlePropagation(const PropagationWish& wish) {
  GroupInts NH;
  FITMODEL.NC = RUNDATA.line.NC;
  printPropagationHeading(wish.ERRA, wish.MAXPA);
  gatherSamples();
  PhaseFit fit = runAttempts(wish, NH);
  storeGroupCurves(NH);
  const int stay = fit.RATIO > wish.RPRATIO ? reduceOrder(wish, fit) : 0;
  const double refused = wish.DCCORR == DCEXTRAPOLE ? closeAtZero(wish, fit) : 0.0;
  storeFittedCurves();
  if (wish.DCCORR >= DCCONSTRAINED) {
    printCorrectionHeading();
    printFinalFit(fit);
  } else {
    printFitEnd();
  }
  warnOfRatios(stay, wish);
  if (refused > 0) warnOfRefusedCorrection("H", refused);
  warnOfMiss("H", fit.MAXERR, wish.ERRA * PERCENT);
}

void fitPropagationImproved() { settlePropagation(propagationWish()); }

} // namespace lcp

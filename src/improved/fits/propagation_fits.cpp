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
#include "improved/fits/moved_poles.h"
#include "improved/fits/pole_choice.h"
#include "store/rundata.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace lcp {

namespace {

constexpr double FIRSTTARGET = 3;    // error of the groups by themselves over the wish
constexpr int IDLEADDITIONS = 6;     // of poles in a row without a gain that end the search
constexpr double GAIN = 0.95;        // error over the best so far that counts as a gain
constexpr int MOSTGIVEN = 4;         // poles that are tried in vain before all count as needed
constexpr int MOSTSAMPLES = 320;     // that poles are moved by
constexpr double FARBELOW = 1e-6;    // of the lowest frequency: as good as zero
constexpr double HEAVY = 30;         // weight of a value that has to be met
constexpr double BELOWWEIGHT = 100;  // of a frequency below the band
constexpr double AIM = 0.97;         // of the error requested
constexpr double AIMENFORCED = 0.75; // before an enforcement
constexpr double NEARUNIT = 0.3;     // distance of H from the unit matrix that counts as near
constexpr double MOSTNEAR = 8;       // weight of a point by it
constexpr double NEAR = 1.6;         // quotient of two real poles that may be a pair
constexpr PoleFrame DELAYED{false, false, false, true};
constexpr int STEPS = 15; // of the poles

struct HStore {
  PoleSet set, trial, best, pairs, plain;

  // H at the fit points followed by those between: all count in residues and errors.
  int NS;
  FreqCurve WFREQ, WFIT;
  CurveMatrix<Complex, MAXFREQ> H, FIT;
  PoleTargets targets;
};
HStore& STORE = bigStore<HStore>();

// --- samples and errors of the model in FITMODEL

// The samples that serve to move poles: all below the band, every so many of the others, and as one
// of much weight, at a frequency far below, the value at zero frequency that the fit has to meet:
// 0.
int pickSamples(Table<int, MAXFREQ + 1>& pick, bool withZero) {
  const int NS = STORE.NS - BETWEEN.BELOW, stride = (NS - 1) / MOSTSAMPLES + 1;
  int count = 0;
  pick[++count] = 1;
  if (withZero) pick[++count] = 0;
  for (int k = NS + 1; k <= STORE.NS; ++k) pick[++count] = k;
  for (int k = 1 + stride; k <= NS; k += stride) pick[++count] = k;
  return count;
}

void gatherTargets(const RealMatrix* HDC) {
  static Table<int, MAXFREQ + 1> pick;
  static FreqCurve W, weight;
  static ComplexCurve F;
  const int n = FITMODEL.NC, count = pickSamples(pick, HDC != nullptr);
  for (int i = 1; i <= count; ++i) {
    const int k = pick[i];
    W[i] = k > 0 ? STORE.WFREQ[k] : FARBELOW * STORE.WFREQ[1];
    weight[i] = k > 0 ? STORE.WFIT[k] : HEAVY * STORE.WFIT[1];
  }
  beginTargets(STORE.targets, count, W, weight, n * n);
  for (int e = 0; e < n * n; ++e) {
    const int r = e / n + 1, c = e % n + 1;
    for (int i = 1; i <= count; ++i) F[i] = pick[i] > 0 ? STORE.H(pick[i], r, c) : (*HDC)(r, c);
    addTarget(STORE.targets, e + 1, F.steps);
  }
}

// Weight of point k by how near the unit matrix H is: what a line loses there is a small part of
// it, and a model is passive only when it has that part right.
double nearness(int k) {
  double least = NEARUNIT;
  for (int i = 1; i <= FITMODEL.NC; ++i)
    least = std::min(least, std::abs(1.0 - SOLVEDATA.second.HMODE(k, i)));
  return std::min(NEARUNIT / least, MOSTNEAR);
}

void gatherSamples(const PropagationWish& wish) {
  const FrequencyGrid& G = SOLVEDATA.grid;
  STORE.H.map(FITMODEL.NC);
  STORE.FIT.map(FITMODEL.NC);
  STORE.NS = std::min(G.NFUSE + BETWEEN.NB + BETWEEN.BELOW, MAXFREQ);
  const double way = G.WFREQ[G.NFUSE] - G.WFREQ[1]; // below 0 on a grid that falls
  for (int k = 1, below = 1; k <= STORE.NS; ++k) {
    const bool between = k > G.NFUSE;
    STORE.WFREQ[k] = between ? BETWEEN.WFREQ[k - G.NFUSE] : G.WFREQ[k];
    while (between && below < G.NFUSE && (STORE.WFREQ[k] - G.WFREQ[below + 1]) * way > 0) ++below;
    const int point = between ? below : k;
    STORE.WFIT[k] = G.WFIT[point] * nearness(point);
    if (k > G.NFUSE + BETWEEN.NB) STORE.WFIT[k] = BELOWWEIGHT * G.WFIT[1];
    for (int c = 1; c <= FITMODEL.NC; ++c) {
      for (int r = 1; r <= FITMODEL.NC; ++r)
        STORE.H(k, r, c) = between ? BETWEEN.H(k - G.NFUSE, r, c) : SOLVEDATA.second.HST(k, r, c);
    }
  }
  gatherTargets(wish.DCCORR == DCCONSTRAINED ? wish.HDC : nullptr);
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

// A real pole to the front of the first group, if it has one: the slowest, whose residue meets the
// value at zero frequency.
void leadByRealPole(PoleSet& S) {
  PoleTable& P = S.HPOLE[1];
  int first = 0;
  for (int m = 1; m <= S.NH[1]; ++m) {
    if (P[m].imag() == 0 && (first == 0 || P[m].real() > P[first].real())) first = m;
  }
  if (first > 1) std::rotate(P.data(), P.data() + first - 1, P.data() + first);
}

// Residues over the poles of the set; a DC correction of type 1 is part of it.
PhaseFit fitPhases(PoleSet& S, const PropagationWish& wish) {
  if (wish.DCCORR == DCCONSTRAINED) leadByRealPole(S);
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

// --- attempts

void printGroupAttempt(int attempt, double TARGET, const PhaseFit& fit) {
  printAttempt(attempt, TARGET);
  printModeHeading();
  for (int g = 1; g <= STORE.set.groups; ++g)
    printModeRow(g, groupError(g, STORE.set), STORE.set.NH[g], STORE.set.TAU[g]);
  printPhaseFit(fit);
}

int countOf(const PoleSet& S) {
  int poles = 0;
  for (int g = 1; g <= S.groups; ++g) poles += S.NH[g];
  return poles;
}

// Deviations swing a little further between the samples, and an enforcement adds to them.
double aimOf(const PropagationWish& wish) {
  return (RUNDATA.passivity.PITERSET ? AIMENFORCED : AIM) * wish.ERRA * PERCENT;
}

// Poles where the deviation is least, and the error of their fit. Where ratios are large pairs are
// tried in the place of real poles.
PhaseFit moveAndFit(PoleSet& S, int steps, const PropagationWish& wish) {
  MOVEPOLES(STORE.targets, DELAYED, steps, S);
  const PhaseFit fit = fitPhases(S, wish);
  STORE.pairs = S;
  if (!(fit.RATIO > wish.RPRATIO) || !PAIRUP(STORE.pairs, NEAR)) return fit;
  MOVEPOLES(STORE.targets, DELAYED, steps, STORE.pairs);
  const PhaseFit other = fitPhases(STORE.pairs, wish);
  const bool better = other.RATIO < fit.RATIO && other.MAXERR <= std::max(aimOf(wish), fit.MAXERR);
  if (!better) return fit;
  S = STORE.pairs;
  return other;
}

// The set without a pole, or with a real one in the place of a pair; false when a group would be
// left without.
bool lessOne(const PoleLoss& loss, PoleSet& S) {
  if (S.NH[loss.g] < 2) return false;
  const Complex p = S.HPOLE[loss.g][loss.m];
  if (p.imag() != 0) S.HPOLE[loss.g][loss.m + 1] = -std::abs(p);
  TAKEPOLEOUT(S, loss.g, loss.m);
  return true;
}

// Gives up poles as long as the wish stays met: those of least loss first.
PhaseFit giveUpPoles(PhaseFit fit, const PropagationWish& wish) {
  static PoleLosses losses;
  for (bool given = true; given;) {
    given = false;
    const int count = std::min(RANKPOLES(STORE.targets, DELAYED, STORE.set, losses), MOSTGIVEN);
    for (int i = 1; i <= count && !given; ++i) {
      STORE.trial = STORE.set;
      if (!lessOne(losses[i], STORE.trial)) continue;
      const PhaseFit without = moveAndFit(STORE.trial, STEPS, wish);
      given = without.MAXERR <= aimOf(wish) && without.RATIO <= std::max(wish.RPRATIO, fit.RATIO);
      if (!given) continue;
      STORE.set = STORE.trial;
      fit = without;
    }
  }
  return fit;
}

// From what the groups need by themselves on, a pole or a pair more at a time where most is left.
PhaseFit addPoles(PhaseFit fit, const PropagationWish& wish) {
  const int limit = std::min(wish.MAXPA, NPMAX);
  PhaseFit best = fit;
  STORE.best = STORE.set;
  for (int idle = 0; best.MAXERR > aimOf(wish) && idle < IDLEADDITIONS;) {
    if (!ADDPOLE(STORE.targets, DELAYED, limit, STORE.set)) break;
    fit = moveAndFit(STORE.set, STEPS, wish);
    idle = fit.MAXERR < GAIN * best.MAXERR ? 0 : idle + 1;
    if (!(fit.MAXERR < best.MAXERR)) continue;
    best = fit;
    STORE.best = STORE.set;
  }
  STORE.set = STORE.best;
  return best;
}

PhaseFit runAttempts(const PropagationWish& wish) {
  const double target = FIRSTTARGET * wish.ERRA * PERCENT;
  GroupInts NH{};
  FORMGROUPS();
  startGroupFits();
  growGroups(target, std::min(wish.MAXPA, NPMAX), NH);
  takeGroupFits(NH, STORE.set);
  PhaseFit fit = moveAndFit(STORE.set, STEPS, wish);
  printGroupAttempt(1, target, fit);
  const int first = countOf(STORE.set);
  fit = addPoles(fit, wish);
  if (fit.MAXERR <= aimOf(wish)) fit = giveUpPoles(fit, wish);
  fit = fitPhases(STORE.set, wish);
  if (countOf(STORE.set) != first) printGroupAttempt(2, wish.ERRA * PERCENT, fit);
  return fit;
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

// Takes real poles out as long as the error allows. Returns how many above the limit stay.
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
    TAKEPOLEOUT(STORE.trial, worst.g, worst.m);
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

// Adds the pole to group 1. False when that lifts the error above the one requested.
bool closeAtZero(const PropagationWish& wish, PhaseFit& fit) {
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
  if (!(corrected.MAXERR <= std::max(wish.ERRA * PERCENT, fit.MAXERR))) return false;
  fit = corrected;
  return true;
}

// Attempts and order reduction; stay: real poles above the limit that remain.
PhaseFit fitPropagation(const PropagationWish& wish, int& stay) {
  gatherSamples(wish);
  PhaseFit fit = runAttempts(wish);
  stay = fit.RATIO > wish.RPRATIO ? reduceOrder(wish, fit) : 0;
  return fit;
}

// Where a pole of its own spoils the finished fit, the DC values become conditions of the fit; the
// error of one that spoils it as well, and is left out.
double correctPropagation(const PropagationWish& wish, int& stay, PhaseFit& fit) {
  const double allowed = std::max(wish.ERRA * PERCENT, fit.MAXERR);
  if (closeAtZero(wish, fit)) return 0.0;
  STORE.plain = STORE.set;
  PropagationWish held = wish;
  held.DCCORR = DCCONSTRAINED;
  int stayHeld = 0;
  const PhaseFit other = fitPropagation(held, stayHeld);
  if (other.MAXERR <= allowed) {
    stay = stayHeld;
    fit = other;
    return 0.0;
  }
  STORE.set = STORE.plain;
  fit = fitPhases(STORE.set, wish);
  return other.MAXERR;
}

} // namespace

void settlePropagation(const PropagationWish& wish) {
  FITMODEL.NC = RUNDATA.line.NC;
  printPropagationHeading(wish.ERRA, wish.MAXPA);
  int stay = 0;
  PhaseFit fit = fitPropagation(wish, stay);
  const double refused = wish.DCCORR == DCEXTRAPOLE ? correctPropagation(wish, stay, fit) : 0.0;
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

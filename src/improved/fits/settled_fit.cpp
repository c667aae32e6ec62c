// Each number of poles starts from complex poles spread over the logarithm, and once more from real
// ones where those do not lead to the target: a few passes of relaxed vector fitting find out how
// many pairs there are and where, steps of MOVEPOLES bring poles and delay to the least sum of
// squares, which relocation need not end at.
//
// Two adjacent poles with huge opposite residues represent a single one: their sum is a difference
// of large numbers, which neither 12 digits nor the simulator's time step can represent. They are
// merged, and the residues are computed again.
#include "improved/fits/settled_fit.h"

#include "base/big_store.h"
#include "base/console.h"
#include "base/constants.h"
#include "base/finite.h"
#include "base/number_forms.h"
#include "fit/delay_search.h"
#include "fit/fit_console.h"
#include "improved/fits/moved_poles.h"
#include "improved/fits/pole_choice.h"
#include "improved/fits/relaxed_fit.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fmt/format.h>
#include <limits>

namespace lcp {

namespace {

constexpr int PASSES = 5;       // of relaxed vector fitting
constexpr int STEPS = 15;       // of poles and delay
constexpr double DELAYUP = 1.2; // bounds of a delay over the first one
constexpr double DELAYLOW = 0.8;
constexpr double NEARLYONE = 1.1; // quotient of two real poles that are a pair rather
constexpr double CLOSE = 1e-2;    // distance of two poles over their size
constexpr double HUGE = 1e3;      // residue over pole and the largest magnitude of the function
constexpr double OPPOSITE = 0.1;  // sum of two residues over one of them
constexpr double NOFIT = std::numeric_limits<double>::infinity();
constexpr int DIGITS = 12; // of a number in a mode model file
constexpr int FIELD = 40;  // characters, more than a number needs

ComplexCurve curve;
PoleTargets& TARGETS = bigStore<PoleTargets>();
PoleSet& SET = bigStore<PoleSet>();

double largestOf(const ComplexCurve& F, int n) {
  LargestModulus most;
  for (int k = 1; k <= n; ++k) most.take(F[k]);
  return most;
}

double deviation(const FreqCurve& W, const ComplexCurve& F, int n, const PoleTable& P,
                 const PoleTable& R, int N, double D) {
  LargestModulus most;
  partialFractionCurve(P, R, N, D, 0.0, W, n, curve);
  for (int k = 1; k <= n; ++k) most.take(curve[k] - F[k]);
  return most;
}

double betweenError(const BetweenCurve& B, const PoleTable& P, const FunctionFit& M, int N) {
  return B.NB == 0 ? 0.0 : deviation(B.WFREQ, *B.F, B.NB, P, M.R, N, M.D);
}

// Residues over the poles; the error.
double fitOver(const FitSamples& Q, const BetweenCurve& between, int N, PoleTable& POLES,
               SettledFit& FIT) {
  VFITPASSES(0, Q, N, POLES, &FIT.model, FIT.errors);
  FIT.ERR = larger(FIT.errors.ERRMAX, betweenError(between, POLES, FIT.model, N));
  return FIT.ERR;
}

// Where the second of two poles stands that should be one; 0 when there are none.
int closePair(const PoleTable& P, const PoleTable& R, int N, double peak) {
  for (int m = 2; m <= N; ++m) {
    const bool close = std::abs(P[m] - P[m - 1]) <= CLOSE * std::abs(P[m]);
    const bool huge = std::abs(R[m]) > HUGE * peak * std::abs(P[m]);
    if (close && huge && std::abs(R[m] + R[m - 1]) < OPPOSITE * std::abs(R[m])) return m;
  }
  return 0;
}

void mergeAt(int m, PoleTable& P, int& N) {
  P[m - 1] = 0.5 * (P[m - 1].real() + P[m].real());
  std::copy(P.data() + m, P.data() + N, P.data() + m - 1);
  --N;
}

double mergePairs(const FitSamples& Q, const BetweenCurve& between, int& N, PoleTable& POLES,
                  SettledFit& FIT) {
  const double peak = largestOf(*Q.F, Q.NS);
  while (const int m = closePair(POLES, FIT.model.R, N, peak)) {
    mergeAt(m, POLES, N);
    fitOver(Q, between, N, POLES, FIT);
  }
  return FIT.ERR;
}

Complex asWritten(Complex z) { return {lcp::asWritten(z.real()), lcp::asWritten(z.imag())}; }

// The fit with the numbers as written to the file, and its error relative to the largest magnitude.
void takeAsWritten(const FitSamples& Q, const BetweenCurve& between, const PoleTable& P,
                   const FunctionFit& M, RationalFit& FIT) {
  FIT.D = lcp::asWritten(M.D);
  for (int m = 1; m <= FIT.N; ++m) {
    FIT.P[m] = asWritten(P[m]);
    FIT.R[m] = asWritten(M.R[m]);
  }
  double e = deviation(Q.WFREQ, *Q.F, Q.NS, FIT.P, FIT.R, FIT.N, FIT.D);
  if (between.NB > 0)
    e = larger(e, deviation(between.WFREQ, *between.F, between.NB, FIT.P, FIT.R, FIT.N, FIT.D));
  const double peak = largestOf(*Q.F, Q.NS);
  FIT.ERR = peak > 0 ? e / peak : e;
}

void finish(const RationalFit& FIT) {
  if (!std::isfinite(FIT.ERR)) refuseFit("The Fit of a Mode gives no Finite Numbers!");
  console::print(" {}{}", FIT.ERR, integerField(FIT.N, 12));
}

// Fits the residues over the merged poles, rounded as in the file.
void takeMerged(const FitSamples& Q, const BetweenCurve& between, int N, PoleTable& POLES,
                SettledFit& fit, RationalFit& FIT) {
  FIT.N = N;
  fitOver(Q, between, N, POLES, fit);
  mergePairs(Q, between, FIT.N, POLES, fit);
  takeAsWritten(Q, between, POLES, fit.model, FIT);
}

// Keeps the candidate if it is better than the best one; a first candidate is kept even if it is
// NaN.
bool takeBetter(const RationalFit& candidate, RationalFit& best) {
  if (best.N != 0 && !(candidate.ERR < best.ERR)) return false;
  best = candidate;
  return true;
}

// --- delays

// The function with the delay removed, at both sets of frequencies.
ComplexCurve barePoints, bareMiddles;

FitSamples bareSamples(const FitSamples& Q, double tau) {
  FitSamples samples = Q;
  takeDelayOut(*Q.F, tau, Q.WFREQ, Q.NS, barePoints);
  samples.F = &barePoints;
  return samples;
}

BetweenCurve bareBetween(const BetweenCurve& B, double tau) {
  if (B.NB > 0) takeDelayOut(*B.F, tau, B.WFREQ, B.NB, bareMiddles);
  return {B.NB, B.WFREQ, &bareMiddles};
}

PoleFrame frameOf(const FitSamples& Q) {
  return {Q.ASYMP != NOASYMPTOTE, Q.ASYMP == WITHPROPORTION, false, false};
}

void takeTarget(const FitSamples& Q) {
  beginTargets(TARGETS, Q.NS, Q.WFREQ, Q.WFIT, 1);
  addTarget(TARGETS, 1, Q.F->steps);
}

// Poles of the target from those of the set, with a delay that may move within the range.
void settleSet(const PoleFrame& frame, int N, const DelayRange& range) {
  SET.groups = 1;
  SET.NH[1] = N;
  for (int pass = 1; pass <= PASSES; ++pass)
    RELOCATERELAXED(TARGETS, frame, SET.TAU[1], N, SET.HPOLE[1]);
  MOVEPOLES(TARGETS, frame, STEPS, SET);
  if (PAIRUP(SET, NEARLYONE)) MOVEPOLES(TARGETS, frame, STEPS, SET);
  SET.TAU[1] = std::clamp(SET.TAU[1], range.low, range.up);
}

enum class Start { Complex, Real };

// Settles N poles and, where the range is one, the delay; keeps what is better than the error at
// hand.
double trySettling(const FitSamples& Q, const BetweenCurve& between, int N, Start start,
                   const DelayRange& range, double ERR, double& tau, PoleTable& POLES,
                   SettledFit& FIT) {
  static SettledFit fit;
  PoleFrame frame = frameOf(Q);
  frame.delays = range.up > range.low;
  if (start == Start::Complex) {
    spreadPoles(SET.HPOLE[1], N, Q.WFREQ[1], Q.WFREQ[Q.NS]);
  } else {
    startingPoles(SET.HPOLE[1], N, Q.WFREQ[1], Q.WFREQ[Q.NS]);
  }
  SET.TAU[1] = tau;
  settleSet(frame, N, range);
  const double t = SET.TAU[1];
  const double error =
      frame.delays ? fitOver(bareSamples(Q, t), bareBetween(between, t), N, SET.HPOLE[1], fit)
                   : fitOver(Q, between, N, SET.HPOLE[1], fit);
  if (!(error < ERR) && ERR < NOFIT) return ERR;
  FIT = fit;
  tau = t;
  std::copy_n(SET.HPOLE[1].data(), N, POLES.data());
  return error;
}

} // namespace

double asWritten(double x) {
  char field[FIELD];
  *fmt::format_to_n(field, FIELD - 1, "{:.{}e}", x, DIGITS - 1).out = '\0';
  return std::strtod(field, nullptr);
}

double SETTLE(const FitSamples& Q, const BetweenCurve& between, int N, double TARGET,
              PoleTable& POLES, SettledFit& FIT) {
  double tau = 0;
  return SETTLEDELAY(Q, between, N, TARGET, {0, 0}, tau, POLES, FIT);
}

double SETTLEDELAY(const FitSamples& Q, const BetweenCurve& between, int N, double TARGET,
                   const DelayRange& range, double& tau, PoleTable& POLES, SettledFit& FIT) {
  const double first = tau;
  takeTarget(Q);
  const double ERR = trySettling(Q, between, N, Start::Complex, range, NOFIT, tau, POLES, FIT);
  if (ERR <= TARGET || N == 1) return ERR;
  double other = first;
  const double least = trySettling(Q, between, N, Start::Real, range, ERR, other, POLES, FIT);
  if (least < ERR) tau = other;
  return least;
}

DelayRange delayRange(double tau) { return {DELAYLOW * tau, DELAYUP * tau}; }

void GROWSETTLED(const FitSamples& Q, const BetweenCurve& between, int NMAX, double TARGET,
                 RationalFit& FIT) {
  static SettledFit fit;
  static RationalFit candidate;
  const double aim = TARGET * largestOf(*Q.F, Q.NS);
  PoleTable poles;
  FIT.N = 0;
  for (int N = 1; FIT.N == 0 || (FIT.ERR > TARGET && N <= std::min(NMAX, NPMAX)); ++N) {
    SETTLE(Q, between, N, aim, poles, fit);
    takeMerged(Q, between, N, poles, fit, candidate);
    takeBetter(candidate, FIT);
  }
  finish(FIT);
}

double DELAYSETTLED(const FitSamples& Q, const BetweenCurve& between, const BodeDelay& first,
                    int NMAX, double TARGET, RationalFit& FIT) {
  static SettledFit fit;
  static RationalFit candidate;
  const double aim = TARGET * largestOf(*Q.F, Q.NS);
  double best = first.TAU;
  PoleTable poles;
  FIT.N = 0;
  for (int N = 1; FIT.N == 0 || (FIT.ERR > TARGET && N <= std::min(NMAX, NPMAX)); ++N) {
    double tau = first.TAU;
    SETTLEDELAY(Q, between, N, aim, delayRange(tau), tau, poles, fit);
    const double written = asWritten(INMILLI * tau) / INMILLI;
    takeMerged(bareSamples(Q, written), bareBetween(between, written), N, poles, fit, candidate);
    if (takeBetter(candidate, FIT)) best = written;
  }
  finish(FIT);
  return best;
}

} // namespace lcp

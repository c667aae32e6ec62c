// Each number of poles starts from poles evenly spaced in the logarithm. A pass that is not the
// best so far may still lead to a better one, so relocation ends after several passes without
// improvement.
//
// Two adjacent poles with huge opposite residues represent a single one: their sum is a difference
// of large numbers, which neither 12 digits nor the simulator's time step can represent. They are
// merged, and the residues are computed again.
#include "improved/fits/settled_fit.h"

#include "base/console.h"
#include "base/constants.h"
#include "base/finite.h"
#include "base/number_forms.h"
#include "fit/delay_search.h"
#include "fit/fit_console.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fmt/format.h>
#include <limits>

namespace lcp {

namespace {

constexpr int MOSTPASSES = 20; // of a relocation
constexpr int IDLEPASSES = 3;  // successive passes without improvement that end it
constexpr int IDLETRIAL = 2;   // ... when trying another delay
constexpr double GAIN = 0.98;  // error relative to the best so far that counts as an improvement
constexpr int MOSTDELAYS = 12; // tried around the rough delay
constexpr double LEASTPHASE = 0.2; // rotation by a delay step at the highest frequency, degrees
constexpr double DELAYUP = 1.2;    // bounds of a search relative to the first delay
constexpr double DELAYLOW = 0.8;
constexpr double FIRSTSTEP = -0.5;  // of a search, relative to the correction of the delay
constexpr double REFINING = 0.0625; // first step around the rough delay, relative to the rough step
constexpr double CLOSE = 1e-2;      // distance of two poles relative to their size
constexpr double HUGE = 1e3;        // residue over pole and largest magnitude of the function
constexpr double OPPOSITE = 0.1;    // sum of two residues relative to one of them
constexpr double REFINABLE = 2.5;   // error over its target that small delay steps can correct
constexpr double HOPELESS = 1.5; // error of a delay relative to the best so far, after a few passes
constexpr int FEWPASSES = 2;
constexpr int ROUGHPASSES = 3; // per iteration of the rough search
constexpr double NOFIT = std::numeric_limits<double>::infinity();
constexpr int DIGITS = 12; // of a number in a mode model file
constexpr int FIELD = 40;  // characters, more than a number needs

ComplexCurve curve;

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

// Runs the given number of passes, or only the residue fit for 0, and returns the error.
double fitOnce(int passes, const FitSamples& Q, const BetweenCurve& between, int N,
               PoleTable& POLES, SettledFit& FIT) {
  VFITPASSES(passes, Q, N, POLES, &FIT.model, FIT.errors);
  FIT.ERR = larger(FIT.errors.ERRMAX, betweenError(between, POLES, FIT.model, N));
  return FIT.ERR;
}

// Like SETTLE, but ends early if the error stays above HOPELESS times another one, `beaten`.
double settle(const FitSamples& Q, const BetweenCurve& between, int N, double TARGET, double beaten,
              PoleTable& POLES, SettledFit& FIT) {
  const int most = beaten < NOFIT ? IDLETRIAL : IDLEPASSES;
  PoleTable poles = POLES;
  double best = NOFIT;
  bool last = false; // whether the last pass is the best one
  for (int pass = 1, idle = 0; pass <= MOSTPASSES && idle < most && !(best <= TARGET); ++pass) {
    const double ERR = fitOnce(1, Q, between, N, poles, FIT);
    idle = ERR < GAIN * best ? 0 : idle + 1;
    last = ERR < best;
    if (last) {
      best = ERR;
      std::copy_n(poles.data(), N, POLES.data());
    }
    if (pass >= FEWPASSES && best > HOPELESS * beaten) break;
  }
  return last ? best : fitOnce(0, Q, between, N, POLES, FIT);
}

// Position of the second of two poles that represent one; 0 if there are none.
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
    fitOnce(0, Q, between, N, POLES, FIT);
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
  fitOnce(0, Q, between, N, POLES, fit);
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

struct DelayTrial {
  const FitSamples& Q;
  const BetweenCurve& between;
  int N;
  double TARGET;
  double best; // error
  double& tau; // its delay, s
  PoleTable& POLES;
  SettledFit& FIT;
};

// Fits with delay t from the best poles so far; returns true if the fit becomes the best.
bool tryDelay(DelayTrial& T, double t) {
  static SettledFit fit;
  if (t == T.tau && T.best < NOFIT) return false;
  PoleTable poles = T.POLES;
  const double ERR =
      settle(bareSamples(T.Q, t), bareBetween(T.between, t), T.N, T.TARGET, T.best, poles, fit);
  if (!(ERR < T.best)) return false;
  T.best = ERR;
  T.tau = t;
  std::copy_n(poles.data(), T.N, T.POLES.data());
  T.FIT = fit;
  return true;
}

// The delay with the least root mean square error, searched from tau on, and poles for it.
void roughDelay(const FitSamples& Q, int N, const DelayRange& range, double& tau,
                PoleTable& POLES) {
  static FunctionFit model;
  FitErrors errors{};
  DelayTable tried{};
  DelaySearch search{tau, range.step, NOFIT, range.up, range.low};
  startingPoles(POLES, N, Q.WFREQ[1], Q.WFREQ[Q.NS]);
  SEARCHDELAY(search, tried, Q, N, POLES, model, errors, ROUGHPASSES);
  tau = search.tau;
}

} // namespace

double asWritten(double x) {
  char field[FIELD];
  *fmt::format_to_n(field, FIELD - 1, "{:.{}e}", x, DIGITS - 1).out = '\0';
  return std::strtod(field, nullptr);
}

bool worthRefining(double ERR, double TARGET) { return ERR > 0 && ERR <= REFINABLE * TARGET; }

double SETTLE(const FitSamples& Q, const BetweenCurve& between, int N, double TARGET,
              PoleTable& POLES, SettledFit& FIT) {
  return settle(Q, between, N, TARGET, NOFIT, POLES, FIT);
}

void GROWSETTLED(const FitSamples& Q, const BetweenCurve& between, int NMAX, double TARGET,
                 RationalFit& FIT) {
  static SettledFit fit;
  static RationalFit candidate;
  const double aim = TARGET * largestOf(*Q.F, Q.NS);
  PoleTable poles;
  FIT.N = 0;
  for (int N = 1; FIT.N == 0 || (FIT.ERR > TARGET && N <= std::min(NMAX, NPMAX)); ++N) {
    startingPoles(poles, N, Q.WFREQ[1], Q.WFREQ[Q.NS]);
    SETTLE(Q, between, N, aim, poles, fit);
    takeMerged(Q, between, N, poles, fit, candidate);
    takeBetter(candidate, FIT);
  }
  finish(FIT);
}

double ROUGHDELAY(const FitSamples& Q, const BetweenCurve& between, int N, double TARGET,
                  const DelayRange& range, double& tau, PoleTable& POLES, SettledFit& FIT) {
  DelayTrial trial{Q, between, N, TARGET, NOFIT, tau, POLES, FIT};
  roughDelay(Q, N, range, tau, POLES);
  tryDelay(trial, tau);
  return trial.best;
}

double REFINEDELAY(const FitSamples& Q, const BetweenCurve& between, int N, double TARGET,
                   double ERR, const DelayRange& range, double& tau, PoleTable& POLES,
                   SettledFit& FIT) {
  const double least = LEASTPHASE * PI / 180.0 / std::max(Q.WFREQ[1], Q.WFREQ[Q.NS]);
  DelayTrial trial{Q, between, N, TARGET, ERR, tau, POLES, FIT};
  double step = REFINING * range.step;
  for (int tried = 1; tried < MOSTDELAYS && trial.best > TARGET && std::fabs(step) > least;) {
    const double centre = tau;
    ++tried;
    if (tryDelay(trial, std::clamp(centre + step, range.low, range.up))) continue;
    ++tried;
    step = -step;
    if (tryDelay(trial, std::clamp(centre + step, range.low, range.up))) continue;
    step *= 0.5;
  }
  return trial.best;
}

DelayRange delayRange(double tau, double correction) {
  return {DELAYLOW * tau, DELAYUP * tau, FIRSTSTEP * correction};
}

double DELAYSETTLED(const FitSamples& Q, const BetweenCurve& between, const BodeDelay& first,
                    int NMAX, double TARGET, RationalFit& FIT) {
  static SettledFit fit;
  static RationalFit candidate;
  const double aim = TARGET * largestOf(*Q.F, Q.NS);
  const DelayRange range = delayRange(first.TAU, first.CORR);
  double tau = first.TAU, best = tau;
  PoleTable poles;
  FIT.N = 0;
  for (int N = 1; FIT.N == 0 || (FIT.ERR > TARGET && N <= std::min(NMAX, NPMAX)); ++N) {
    tau = first.TAU;
    const double ERR = ROUGHDELAY(Q, between, N, aim, range, tau, poles, fit);
    if (worthRefining(ERR, aim)) REFINEDELAY(Q, between, N, aim, ERR, range, tau, poles, fit);
    const double written = asWritten(INMILLI * tau) / INMILLI;
    takeMerged(bareSamples(Q, written), bareBetween(between, written), N, poles, fit, candidate);
    if (takeBetter(candidate, FIT)) best = written;
  }
  finish(FIT);
  return best;
}

} // namespace lcp

// A step d that did not reduce the error is halved and reversed. A delay that occurs again exactly,
// mostly at a bound, is not fitted again. Delays are compared bit by bit, so the path of a search
// depends on their last bits.
#include "fit/delay_search.h"

#include <cmath>

namespace lcp {

namespace {

// Position of exactly this delay in the table; 0 if it was not tried.
int positionOf(double tau, const DelayTable& T) {
  for (int i = 1; i <= DELAYENTRIES; ++i) {
    if (T.tau[i] == tau) return i;
  }
  return 0;
}

void stepOn(DelaySearch& S, double error) {
  if (S.previous <= error) S.d = -0.5 * S.d;
  S.stepSum += S.d;
  double next = S.tau + S.d;
  if (next > S.up) next = S.up;
  if (next < S.low) next = S.low;
  S.previous = error;
  S.tau = next;
}

} // namespace

void takeDelayOut(const ComplexCurve& F, double tau, const FreqCurve& WFREQ, int NS,
                  ComplexCurve& bare) {
  for (int k = 1; k <= NS; ++k) {
    const double turn = WFREQ[k] * tau;
    bare[k] = F[k] * Complex(std::cos(turn), std::sin(turn));
  }
}

void SEARCHDELAY(DelaySearch& S, DelayTable& T, const FitSamples& Q, int N, PoleTable& POLES,
                 FunctionFit& FIT, FitErrors& ERRORS, int passes) {
  static ComplexCurve bare;
  FitSamples P = Q;
  P.F = &bare;
  for (int it = 1; it <= DELAYITERATIONS; ++it) {
    const double tau = S.tau;
    const int known = it < DELAYITERATIONS ? positionOf(tau, T) : 0;
    if (known == 0) {
      takeDelayOut(*Q.F, tau, Q.WFREQ, Q.NS, bare);
      VFITPASSES(passes, P, N, POLES, &FIT, ERRORS);
    }
    const double error = known == 0 ? ERRORS.ERRRMS : T.error[known];
    T.tau[it] = tau;
    T.error[it] = error;
    stepOn(S, error);
    if (it == DELAYITERATIONS) S.tau = tau;
  }
}

} // namespace lcp

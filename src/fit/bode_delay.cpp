// A propagation function is H = A exp(-j w TAU), where A has minimum phase, so that its phase
// follows from its magnitude a = |H|. With u = ln(w / w0) and the slope S = d ln a / d ln w at w0,
//
//   CORR w0 = pi/2 S + 1/pi  integral of (|d ln a / du| - |S|) ln coth(|u| / 2) du,
//   TAU = LEN / V(w0) + CORR
//
// S is a central difference; the integral is a sum over the grid intervals within a decade on both
// sides, with the kernel at the middle frequency of each. Magnitudes are limited to at least
// 1e-302, so that a vanished mode keeps finite logarithms.
#include "fit/bode_delay.h"

#include "base/constants.h"

#include <algorithm>
#include <cmath>

namespace lcp {

namespace {

constexpr double LEASTMAGNITUDE = 1e-302;
constexpr double DECADEBELOW = 0.1; // range of the integral relative to w0
constexpr double DECADEABOVE = 10.0;

double magnitude(Complex h) { return std::max(std::abs(h), LEASTMAGNITUDE); }

// First step where the magnitude has fallen to the threshold, limited to steps with two neighbours.
int thresholdStep(const ComplexCurve& HM, int NS, double THRESH) {
  int k = 1;
  while (k < NS && !(magnitude(HM[k]) <= THRESH)) ++k;
  return std::max(std::min(k, NS - 1), 2);
}

// Last step below this ratio to w0; 1 if there is none.
int lastStepBelow(double ratio, double w0, const FreqCurve& WFREQ, int NS) {
  int last = 1;
  for (int k = 1; k <= NS; ++k) {
    if (WFREQ[k] / w0 < ratio) last = k;
  }
  return last;
}

// Logarithmic slope of the magnitude at step k; one-sided on a grid of two steps.
double slopeAt(int k, const ComplexCurve& HM, const FreqCurve& WFREQ, int NS) {
  const int up = std::min(k + 1, NS);
  return std::log(magnitude(HM[up]) / magnitude(HM[k - 1])) / std::log(WFREQ[up] / WFREQ[k - 1]);
}

double gainPhaseSum(double S, double w0, const ComplexCurve& HM, const FreqCurve& WFREQ, int NS) {
  const int k1 = lastStepBelow(DECADEBELOW, w0, WFREQ, NS);
  const int k2 = lastStepBelow(DECADEABOVE, w0, WFREQ, NS);
  double B = 0;
  for (int i = k1; i <= k2 - 1; ++i) {
    const double du = std::log(WFREQ[i + 1] / WFREQ[i]);
    const double u = std::log((WFREQ[i] + WFREQ[i + 1]) / (2 * w0));
    const double slope = std::log(magnitude(HM[i + 1]) / magnitude(HM[i])) / du;
    B += (std::fabs(slope) - std::fabs(S)) * std::log(1 / std::tanh(std::fabs(u) / 2)) * du;
  }
  return B;
}

} // namespace

BodeDelay BODEDLY(const FreqCurve& V, const ComplexCurve& HM, int NS, const FreqCurve& WFREQ,
                  double LEN, double THRESH) {
  const int k0 = thresholdStep(HM, NS, THRESH);
  const double w0 = WFREQ[k0];
  const double S = slopeAt(k0, HM, WFREQ, NS);
  const double B = gainPhaseSum(S, w0, HM, WFREQ, NS);
  const double CORR = S * PI / 2 / w0 + B / PI / w0;
  return {LEN / V[k0] + CORR, CORR};
}

} // namespace lcp

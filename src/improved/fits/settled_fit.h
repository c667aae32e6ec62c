// Fits of one function with poles relocated until the error, also between the points, stops
// decreasing.
#pragma once

#include "fit/bode_delay.h"
#include "fit/growing_fit.h"

namespace lcp {

// A function at frequencies between the points of its fit, rad/s; NB is 0 if there are none.
struct BetweenCurve {
  int NB;
  const FreqCurve& WFREQ;
  const ComplexCurve* F;
};

// Settled poles give this fit.
struct SettledFit {
  FunctionFit model;
  FitErrors errors; // at the fit points
  double ERR;       // largest deviation, at the fit points and between them
};

// Finds N poles of one function Q and the fit over them. Goes on looking where the error, which is
// returned, is above TARGET.
double SETTLE(const FitSamples& Q, const BetweenCurve& between, int N, double TARGET,
              PoleTable& POLES, SettledFit& FIT);

// Search range of a delay, s.
struct DelayRange {
  double low, up;
};

// The usual one, around a first delay.
DelayRange delayRange(double tau);

// The same of a function with the delay still in its curves, from the delay tau on, which is moved.
double SETTLEDELAY(const FitSamples& Q, const BetweenCurve& between, int N, double TARGET,
                   const DelayRange& range, double& tau, PoleTable& POLES, SettledFit& FIT);

// Finds the smallest number of poles, from 1 on, that meets TARGET with the numbers as written to a
// mode model file; if none up to NMAX does, the best fit found. Arguments and console line are
// those of GROWFIT and DELAYFIT.
void GROWSETTLED(const FitSamples& Q, const BetweenCurve& between, int NMAX, double TARGET,
                 RationalFit& FIT);
double DELAYSETTLED(const FitSamples& Q, const BetweenCurve& between, const BodeDelay& first,
                    int NMAX, double TARGET, RationalFit& FIT);

// The value of x in a field of a mode model file, rounded to 12 digits.
double asWritten(double x);

} // namespace lcp

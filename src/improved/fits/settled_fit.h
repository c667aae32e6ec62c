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

// Relocates the N poles POLES of one function Q until the error stops decreasing or is at most
// TARGET. POLES and FIT are the best poles found and their fit. Returns the error.
double SETTLE(const FitSamples& Q, const BetweenCurve& between, int N, double TARGET,
              PoleTable& POLES, SettledFit& FIT);

// Search range of a delay, s.
struct DelayRange {
  double low, up, step; // step: first step, signed
};

// The usual range around a first delay with its minimum-phase part.
DelayRange delayRange(double tau, double correction);

// Searches the delay of the function Q, whose curves still include it, that N poles fit best, like
// SEARCHDELAY starting from tau, and settles its poles. Sets delay, poles and fit; returns the
// error.
double ROUGHDELAY(const FitSamples& Q, const BetweenCurve& between, int N, double TARGET,
                  const DelayRange& range, double& tau, PoleTable& POLES, SettledFit& FIT);

// Continues from the results of ROUGHDELAY and its error ERR: small delay steps in both directions,
// halved if neither is better, each with settled poles, until the error is at most TARGET.
double REFINEDELAY(const FitSamples& Q, const BetweenCurve& between, int N, double TARGET,
                   double ERR, const DelayRange& range, double& tau, PoleTable& POLES,
                   SettledFit& FIT);

// Whether small steps of the delay can bring an error down to the target.
bool worthRefining(double ERR, double TARGET);

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

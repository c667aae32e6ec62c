// Fits of one function whose poles are relocated until the error stops falling, with errors that
// also count between the points of the fit.
#pragma once

#include "fit/bode_delay.h"
#include "fit/growing_fit.h"

namespace lcp {

// A function at frequencies between the points of its fit, rad/s; NB is 0 where there are none.
struct BetweenCurve {
  int NB;
  const FreqCurve& WFREQ;
  const ComplexCurve* F;
};

// Settled poles, and what the fit over them is.
struct SettledFit {
  FunctionFit model;
  FitErrors errors; // at the points of the fit
  double ERR;       // largest deviation, at the points and between them
};

// Relocates the N poles POLES of one function Q until the error stops falling, or has come down to
// TARGET, and leaves the best poles met and their fit. Returns the error.
double SETTLE(const FitSamples& Q, const BetweenCurve& between, int N, double TARGET,
              PoleTable& POLES, SettledFit& FIT);

// Where a delay is searched, s.
struct DelayRange {
  double low, up, step; // step: first one, signed
};

// The usual one, around a first delay with its minimum-phase part.
DelayRange delayRange(double tau, double correction);

// Searches the delay of the function Q, the delay still in its curves, that N poles fit best, as
// SEARCHDELAY does from tau on, and settles its poles. Leaves delay, poles and their fit; returns
// the error.
double ROUGHDELAY(const FitSamples& Q, const BetweenCurve& between, int N, double TARGET,
                  const DelayRange& range, double& tau, PoleTable& POLES, SettledFit& FIT);

// Goes on from what ROUGHDELAY left and its error ERR: small steps to both sides, halved where
// neither is better, each with settled poles, until the error is TARGET.
double REFINEDELAY(const FitSamples& Q, const BetweenCurve& between, int N, double TARGET,
                   double ERR, const DelayRange& range, double& tau, PoleTable& POLES,
                   SettledFit& FIT);

// Whether small steps of the delay can bring an error to the target.
bool worthRefining(double ERR, double TARGET);

// Fewest poles, from 1 on, that meet TARGET in the numbers as a mode model file holds them; of NMAX
// poles that do not, the best fit met. Arguments and the line on the console are those of GROWFIT
// and DELAYFIT.
void GROWSETTLED(const FitSamples& Q, const BetweenCurve& between, int NMAX, double TARGET,
                 RationalFit& FIT);
double DELAYSETTLED(const FitSamples& Q, const BetweenCurve& between, const BodeDelay& first,
                    int NMAX, double TARGET, RationalFit& FIT);

// The number that a field of a mode model file holds, of 12 digits.
double asWritten(double x);

} // namespace lcp

// Search for the delay of a propagation function: the one whose removal leaves the function that
// its poles fit best.
#pragma once

#include "fit/vector_fit.h"

namespace lcp {

constexpr int DELAYITERATIONS = 15; // of a search
constexpr int DELAYPASSES = 3;      // vector fitting passes of an iteration

// Delays that were tried and the root mean square error that came of each. A search writes a
// position an iteration and looks through all of them, so a table that is not cleared answers with
// errors of earlier searches. An empty position counts as the delay 0 fitted without error.
constexpr int DELAYENTRIES = 25;
struct DelayTable {
  Table<double, DELAYENTRIES> tau;   // s
  Table<double, DELAYENTRIES> error; // of the function without delay
};

struct DelaySearch {
  double tau;         // in: first delay; out: the last one tried, s
  double d;           // first step, s; changed
  double previous;    // error that the first one is compared with; changed
  double up;          // largest delay that a step leads to, s
  double low;         // ... and smallest, s
  double stepSum = 0; // every step is added to it, also the last, whose delay is not tried, s
};

// bare = F exp(j w tau): the function F with the delay taken out.
void takeDelayOut(const ComplexCurve& F, double tau, const FreqCurve& WFREQ, int NS,
                  ComplexCurve& bare);

// Runs the search with N poles from the poles POLES, each fit going on from the poles of the last
// one. Q is the problem (one function) with the delay still in its curve. The last delay is always
// fitted: POLES, FIT and ERRORS are those of that fit.
void SEARCHDELAY(DelaySearch& S, DelayTable& T, const FitSamples& Q, int N, PoleTable& POLES,
                 FunctionFit& FIT, FitErrors& ERRORS, int passes = DELAYPASSES);

} // namespace lcp

// Searches the delay of a propagation function whose removal gives the best fit.
#pragma once

#include "fit/vector_fit.h"

namespace lcp {

constexpr int DELAYITERATIONS = 15; // per search
constexpr int DELAYPASSES = 3;      // vector fitting passes per iteration

// Delays that were tried and the root mean square error of each. A search writes one position per
// iteration and looks through the whole table, so a table that is not cleared also returns errors
// of earlier searches. An empty position counts as delay 0 with error 0.
constexpr int DELAYENTRIES = 25;
struct DelayTable {
  Table<double, DELAYENTRIES> tau;   // s
  Table<double, DELAYENTRIES> error; // of the fit with the delay removed
};

struct DelaySearch {
  double tau;         // in: first delay; out: last delay tried, s
  double d;           // first step, s; changed
  double previous;    // error that the first one is compared with; changed
  double up;          // upper bound of the delay, s
  double low;         // lower bound, s
  double stepSum = 0; // sum of all steps, including the last, whose delay is not tried, s
};

// bare = F exp(j w tau): the function F with the delay removed.
void takeDelayOut(const ComplexCurve& F, double tau, const FreqCurve& WFREQ, int NS,
                  ComplexCurve& bare);

// Runs the search with N poles, starting from POLES; each fit starts from the poles of the previous
// one. Q is the problem (one function), still including the delay. The last delay is always fitted:
// POLES, FIT and ERRORS belong to that fit.
void SEARCHDELAY(DelaySearch& S, DelayTable& T, const FitSamples& Q, int N, PoleTable& POLES,
                 FunctionFit& FIT, FitErrors& ERRORS, int passes = DELAYPASSES);

} // namespace lcp

// Vector fitting: rational approximation of sampled functions with common poles.
#pragma once

#include "fit/partial_fractions.h"

namespace lcp {

// What is done with a pole in the right half plane.
constexpr int KEEPUNSTABLE = 1;
constexpr int FLIPUNSTABLE = 2; // mirrored at the imaginary axis

// What the fit has beside its poles.
constexpr int NOASYMPTOTE = 1;    // D = E = 0
constexpr int WITHCONSTANT = 2;   // D
constexpr int WITHPROPORTION = 3; // D and s E

// NF functions on one grid of NS frequencies, and how they are to be fitted: 2 NS NF up to LSROWS,
// NF (N + ASYMP - 1) + N up to LSCOLS.
struct FitSamples {
  int NS;
  int NF;
  const FreqCurve& WFREQ; // angular frequencies, rad/s
  const ComplexCurve* F;  // the first of NF curves, one behind the other
  const FreqCurve& WFIT;  // weight of each frequency
  int STABLE;             // FLIPUNSTABLE, or any other value
  int ASYMP;              // NOASYMPTOTE, WITHCONSTANT or WITHPROPORTION
};

// Fit of one function over the common poles.
struct FunctionFit {
  PoleTable R; // residues
  double D;
  double E;
  ComplexCurve FIT; // the model at the grid frequencies
};

// Deviations of model and samples, unweighted, over all functions.
struct FitErrors {
  double ERRMAX;  // largest
  double ERRREL;  // largest over the frequencies of largest deviation / largest magnitude there
  double ERRRMS;  // root of the mean square
  double ERRNORM; // largest over the largest magnitude of all
};

// Starting pole I of N, rad/s, without its sign: evenly spaced in the logarithm from WLO to WHI;
// WLO for a single pole.
double LOGPOLE(int I, double WLO, double WHI, int N);

// All N of them on the negative real axis.
void startingPoles(PoleTable& P, int N, double WLO, double WHI);

// One pass in its two halves: relocates the N poles (at most NPMAX), then finds residues, D, E,
// model and deviations of each function over the new ones. POLES is in and out; after a pass sorted
// by rising modulus. Uses the least-squares store and keeps nothing between calls.
void VFIT(const FitSamples& Q, int N, PoleTable& POLES, FunctionFit* FITS, FitErrors& ERRORS);

// The first half, so many times: for fits that find the residues by a problem of their own.
void RELOCATE(int passes, const FitSamples& Q, int N, PoleTable& POLES);

// So many passes, each from where the last one left the poles; of all but the last the residues are
// of no use. With none the residues are those over the poles given.
void VFITPASSES(int passes, const FitSamples& Q, int N, PoleTable& POLES, FunctionFit* FITS,
                FitErrors& ERRORS);

} // namespace lcp

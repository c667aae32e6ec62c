// Vector fitting: rational approximation of sampled functions with common poles.
#pragma once

#include "fit/partial_fractions.h"

namespace lcp {

// Treatment of a pole in the right half plane.
constexpr int KEEPUNSTABLE = 1;
constexpr int FLIPUNSTABLE = 2; // mirrored at the imaginary axis

// Terms of the fit in addition to its poles.
constexpr int NOASYMPTOTE = 1;    // D = E = 0
constexpr int WITHCONSTANT = 2;   // D
constexpr int WITHPROPORTION = 3; // D and s E

// NF functions on one grid of NS frequencies, and options of the fit. 2 NS NF is at most LSROWS and
// NF (N + ASYMP - 1) + N at most LSCOLS.
struct FitSamples {
  int NS;
  int NF;
  const FreqCurve& WFREQ; // angular frequencies, rad/s
  const ComplexCurve* F;  // the first of NF consecutive curves
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

// Deviations between model and samples, unweighted, over all functions.
struct FitErrors {
  double ERRMAX;  // largest
  double ERRREL;  // largest over the frequencies of the largest deviation / largest magnitude at
                  // that frequency
  double ERRRMS;  // root mean square
  double ERRNORM; // largest, relative to the largest magnitude of all
};

// Starting pole I of N, rad/s, without its sign: evenly spaced in the logarithm from WLO to WHI;
// WLO for a single pole.
double LOGPOLE(int I, double WLO, double WHI, int N);

// All N starting poles, on the negative real axis.
void startingPoles(PoleTable& P, int N, double WLO, double WHI);

// One pass in two halves: relocates the N poles (at most NPMAX), then finds residues, D, E, model
// and deviations of each function over the new poles. POLES is in and out, sorted by ascending
// modulus on exit. Uses the least-squares store and keeps nothing between calls.
void VFIT(const FitSamples& Q, int N, PoleTable& POLES, FunctionFit* FITS, FitErrors& ERRORS);

// The step in which poles move: POLES become the zeros of sigma = 1 + sum c_m phi_m over them, c in
// the real form of the basis.
void TAKEZEROS(int N, const double* c, int STABLE, PoleTable& POLES);

// The first half, so many times: for fits that find the residues by a problem of their own.
void RELOCATE(int passes, const FitSamples& Q, int N, PoleTable& POLES);

// Several passes, each from the poles of the previous one; the residues belong to the last pass.
// With 0 passes they are those over the given poles.
void VFITPASSES(int passes, const FitSamples& Q, int N, PoleTable& POLES, FunctionFit* FITS,
                FitErrors& ERRORS);

} // namespace lcp

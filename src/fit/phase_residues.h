// Residues of the propagation matrix over the poles and delays of all groups.
#pragma once

#include "store/fitmodel.h"

namespace lcp {

struct PhaseFit {
  double MAXERR; // largest deviation of an element of H
  double RMSERR; // largest root mean square deviation of an element over the frequencies
  double RATIO;  // largest |residue / pole| of a real pole, within 10 per cent
};

// Counts the deviation of an element's model M from H over NS frequencies.
void countDeviation(PhaseFit& fit, const Curve<Complex, MAXFREQ>& M,
                    const Curve<Complex, MAXFREQ>& H, int NS);

// Samples of H at NS frequencies with their weights, and where the model at them goes.
struct PhaseSamples {
  int NS;
  const FreqCurve& WFREQ; // rad/s
  const FreqCurve& WFIT;
  const CurveMatrix<Complex, MAXFREQ>& H;
  CurveMatrix<Complex, MAXFREQ>& FIT;
};

// Fits HST of the solve store over its NFUSE grid points, with the weights WFIT, by the poles HPOLE
// and delays TAU of FITMODEL, and fills HRES and H of FITTED; NC, NGROUP and NH say what is in use.
// Deviations are unweighted and absolute. HDC is H at zero frequency, looked at with these DCTYPEs
// alone:
//   1  the fit is constrained to meet HDC, by the residue of a real pole: the first of group 1, or
//      one more at -pi rad/s behind its last when that one is complex;
//   2  the residue of one more pole at -pi rad/s takes up what the fit has left.
// SVDFLAG: directions that the columns hardly span are taken out of the problem before it is
// solved, and poles that end without a residue out of the model.
PhaseFit HPHASEFIT(int DCTYPE, const RealMatrix* HDC, bool SVDFLAG);

// The same over other samples.
PhaseFit HPHASEFIT(const PhaseSamples& Q, int DCTYPE, const RealMatrix* HDC, bool SVDFLAG);

// Largest |residue / pole| of a real pole of FITMODEL, over all elements. A ratio takes the place
// of the running largest when it leads it by more than 10 per cent; LEADER[g] is the pole of group
// g that did so last, 0 when none did. 0 without real poles.
double POLERATIO(GroupInts& LEADER);

// Takes pole m out of group g; the later ones move up. The residues stay as they are, until the
// next HPHASEFIT.
void REMOVEPOLE(int g, int m);

} // namespace lcp

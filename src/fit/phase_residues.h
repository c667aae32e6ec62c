// Residues of the propagation matrix over the poles and delays of all groups.
#pragma once

#include "store/fitmodel.h"

namespace lcp {

struct PhaseFit {
  double MAXERR; // largest deviation of an element of H
  double RMSERR; // largest root mean square deviation of an element over the frequencies
  double RATIO;  // largest |residue / pole| of a real pole, within 10 percent
};

// Includes the deviation of an element's model M from H over NS frequencies.
void countDeviation(PhaseFit& fit, const Curve<Complex, MAXFREQ>& M,
                    const Curve<Complex, MAXFREQ>& H, int NS);

// Samples of H at NS frequencies with their weights, and the place of the model at them.
struct PhaseSamples {
  int NS;
  const FreqCurve& WFREQ; // rad/s
  const FreqCurve& WFIT;
  const CurveMatrix<Complex, MAXFREQ>& H;
  CurveMatrix<Complex, MAXFREQ>& FIT;
};

// Fits HST of the solve store over its NFUSE grid points, with weights WFIT, poles HPOLE and delays
// TAU of FITMODEL, and fills HRES and H of FITTED; NC, NGROUP and NH give the sizes in use.
// Deviations are unweighted and absolute. HDC is H at zero frequency, used only with these DCTYPEs:
//   1  the fit is constrained to meet HDC by the residue of a real pole: the first of group 1 or,
//      if that is complex, an additional one at -pi rad/s after its last;
//   2  after the fit, the residue of an additional pole at -pi rad/s takes up the difference.
// SVDFLAG: removes directions with negligible singular values from the problem before solving it,
// and poles without a residue from the model.
PhaseFit HPHASEFIT(int DCTYPE, const RealMatrix* HDC, bool SVDFLAG);

// The same for other samples.
PhaseFit HPHASEFIT(const PhaseSamples& Q, int DCTYPE, const RealMatrix* HDC, bool SVDFLAG);

// Largest |residue / pole| of a real pole of FITMODEL over all elements. A ratio replaces the
// largest so far if it exceeds it by more than 10 percent; LEADER[g] is the last pole of group g
// that did so, 0 if none did. Returns 0 without real poles.
double POLERATIO(GroupInts& LEADER);

// Removes pole m from group g; later poles move up. The residues are unchanged until the next
// HPHASEFIT.
void REMOVEPOLE(int g, int m);

} // namespace lcp

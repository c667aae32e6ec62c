// Rational fit of the characteristic admittance of the phases.
#pragma once

namespace lcp {

// DC correction types of the phase-domain model.
constexpr int DCNONE = 0;
constexpr int DCCONSTRAINED = 1; // the fit is made to meet the DC values
constexpr int DCEXTRAPOLE = 2;   // a real pole of its own takes up the difference behind the fit

struct AdmittanceWish {
  double target; // largest deviation over the largest magnitude, both over all elements
  int limit;     // most poles, at most NPMAX
  int dcType;
};

// Fits YCST over the fitted grid points with one set of poles, adding poles one at a time from 1 on
// until the target or the limit is met, and fills YPOLE, YRES, YD and NPY of FITMODEL, YC of
// FITTED. Prints its table; when the target is not met, a warning, and the run ends with exit
// status 2.
void YCFIT(const AdmittanceWish& wish);

} // namespace lcp

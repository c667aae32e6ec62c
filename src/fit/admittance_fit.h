// Rational fit of the characteristic admittance of the phases.
#pragma once

#include <string_view>

namespace lcp {

struct AdmittanceWish {
  double target; // largest deviation over the largest magnitude, both over all elements
  int limit;     // most poles, at most NPMAX
  int dcType;    // DC correction type
};

// Fits YCST over the fitted grid points with one set of poles, adding poles one at a time from 1 on
// until the target or the limit is met, and fills YPOLE, YRES, YD and NPY of FITMODEL, YC of
// FITTED. Prints its table; when the target is not met, a warning, and the run ends with exit
// status 2.
void YCFIT(const AdmittanceWish& wish);

// The first line of the table on the console, whose first number is the error in per cent.
constexpr std::string_view YCHEADING = " Yc:          Maximum          Number";

// The table of a fit of N poles with the error err, a fraction, and the warning when it misses.
void reportAdmittance(const AdmittanceWish& wish, double err, int N);

} // namespace lcp

// Rational fit of the characteristic admittance of the phases.
#pragma once

#include <string_view>

namespace lcp {

struct AdmittanceWish {
  double target; // largest deviation relative to the largest magnitude, both over all elements
  int limit;     // maximum number of poles, at most NPMAX
  int dcType;    // DC correction type
};

// Fits YCST over the fitted grid points with one set of poles, increasing their number from 1 until
// the target or the limit is reached. Fills YPOLE, YRES, YD and NPY of FITMODEL and YC of FITTED,
// and prints a table; if the target is missed, a warning too, and the run ends with exit status 2.
void YCFIT(const AdmittanceWish& wish);

// First line of the table on the console, whose first number is the error in percent.
constexpr std::string_view YCHEADING = " Yc:          Maximum          Number";

// Prints the table of a fit with N poles and error err, a fraction, and a warning if the target is
// missed.
void reportAdmittance(const AdmittanceWish& wish, double err, int N);

} // namespace lcp

// Rational fit of the series impedance of the phases, per metre:
//
//   Z(i,j)(s) = ZFD(i,j) + s ZFE(i,j) + sum over m of ZFR(i,j)[m] / (s - ZFP[m])
#pragma once

#include "fit/fit_store.h"

#include <string_view>

namespace lcp {

// Fits ZSTORE over the fitted grid points with an increasing number of poles, from 1 to NMAX (at
// most NPMAX), until the largest deviation of all elements relative to the largest magnitude is at
// most TARGET; returns that error. Fills SERIESMODEL and prints the result; if the target is
// missed, also a warning, and the run ends with exit status 2. A frequency that is not positive, or
// a model that is not finite, ends the run with a message and exit status 1.
double SERIESFIT(int NMAX, double TARGET);

// Runs the fit with the limits of the model section and prints its headings.
void fitSeriesImpedance();

// Common to all fits of Z: prepareSeriesFit checks the frequencies and maps the model; the others
// print the headings, and the result with its warning.
void prepareSeriesFit();
void printSeriesHeading();
void printSeriesEnd();
constexpr std::string_view SERIESRESULT = "  Actual: "; // before the error and the number of poles
void reportSeries(int NMAX, double TARGET, double err, int N);

} // namespace lcp

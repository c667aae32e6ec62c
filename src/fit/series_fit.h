// Rational fit of the series impedance of the phases, per metre:
//
//   Z(i,j)(s) = ZFD(i,j) + s ZFE(i,j) + sum over m of ZFR(i,j)[m] / (s - ZFP[m])
#pragma once

#include "fit/fit_store.h"

#include <string_view>

namespace lcp {

// Fits ZSTORE over the fitted grid points with a growing number of poles, from 1 to NMAX (at most
// NPMAX), until the largest deviation of all elements over the largest magnitude of all is TARGET
// or less; returns that error. Fills SERIESMODEL and prints the result; when the target is not met,
// a warning, and the run ends with exit status 2. A grid with a frequency that is not above 0, and
// a model that is not finite, end the run with a message, exit status 1.
double SERIESFIT(int NMAX, double TARGET);

// The fit with the limits of the model section, and its headings on the console.
void fitSeriesImpedance();

// What every fit of Z starts and ends with: the check of its frequencies, and room for the model;
// the headings; the result with its warning.
void prepareSeriesFit();
void printSeriesHeading();
void printSeriesEnd();
constexpr std::string_view SERIESRESULT = "  Actual: "; // ahead of the error and of the poles
void reportSeries(int NMAX, double TARGET, double err, int N);

} // namespace lcp

// Console tables of the fit of the propagation function. Errors are fractions, printed in per cent;
// delays in seconds, printed in milliseconds.
#pragma once

#include "fit/phase_residues.h"

#include <string_view>

namespace lcp {

// The first lines of the tables of H, whose first numbers are the error in per cent: of the fit in
// phases, and behind a DC correction.
constexpr std::string_view HPHASEHEADING = " Hphase:      Maximum           Maximum       Maximum";
constexpr std::string_view FINALHEADING =
    " Final Fit:   Maximum        Maximum      Number      Adjusted";

void printPropagationHeading(double percentRequested, int limit);
void printAttempt(int attempt, double TARGET);

// The table of the groups' own fits, row by row.
void printModeHeading();
void printModeRow(int g, double ERRG, int NH, double TAU);

void printPhaseFit(const PhaseFit& fit);

void printReductionHeading();
void printReducedGroups(); // poles of each group of FITMODEL

void printCorrectionHeading();
void printFinalFit(const PhaseFit& fit); // with the poles and delays of FITMODEL
void printFitEnd();                      // in its place when there is no correction

} // namespace lcp

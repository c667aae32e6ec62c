// Console tables of the fit of the propagation function.
//
// Errors are fractions and printed in percent; delays are in s and printed in ms.
#pragma once

#include "fit/phase_residues.h"

#include <string_view>

namespace lcp {

// First lines of the tables of H, whose first numbers are the error in percent: of the phase fit,
// and after a DC correction.
constexpr std::string_view HPHASEHEADING = " Hphase:      Maximum           Maximum       Maximum";
constexpr std::string_view FINALHEADING =
    " Final Fit:   Maximum        Maximum      Number      Adjusted";

// Heading of all tables with the requested error and the limit of poles; heading of one attempt.
void printPropagationHeading(double percentRequested, int limit);
void printAttempt(int attempt, double TARGET);

// The table of the groups' own fits, row by row.
void printModeHeading();
void printModeRow(int g, double ERRG, int NH, double TAU);

// Errors of a phase fit and its largest ratio of residue to pole.
void printPhaseFit(const PhaseFit& fit);

// Order reduction.
void printReductionHeading();
void printReducedGroups(); // poles of each group of FITMODEL

// DC correction.
void printCorrectionHeading();
void printFinalFit(const PhaseFit& fit); // with the poles and delays of FITMODEL
void printFitEnd();                      // printed instead if there is no correction

} // namespace lcp

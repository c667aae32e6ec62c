// Console tables of the fit of the propagation function. Errors are fractions, printed in per cent;
// delays in seconds, printed in milliseconds.
#pragma once

#include "fit/phase_residues.h"

namespace lcp {

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

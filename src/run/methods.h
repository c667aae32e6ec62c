// Selects default or improved methods for each stage of a solve, and is the only place that does.
#pragma once

#include "modal/lost_modes.h"

#include <string_view>

namespace lcp {

// Constants, eigenvalues and eigenvectors at every step of the grid.
void runFirstLoop();

// Modal and phase-domain functions at step k; records lost modes.
void takeSecondStep(int k, LostModes& lost);

// Modes at the report frequency.
void runReportModes();

// Fits of the mode model, of the phase model (Yc before H) and of the MFDTD model.
void runModeFits();
void runAdmittanceFit();
void runPropagationFit();
void runSeriesFit();

// Passivity enforcement, between the fits of the phase model and its file, and passivity check.
void runEnforcement();
void runPassivityCheck();
bool enforcementChangesYc();        // beside H
bool checksOnGrid();                // on the frequencies of the passivity options alone
std::string_view passivityRemedy(); // what mends a phase model that generates power

} // namespace lcp

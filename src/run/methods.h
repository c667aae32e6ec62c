// The methods of a solve, stage by stage: the default ones, or those of improved/ that the
// numerical options turn on. Nowhere else is one chosen.
#pragma once

#include "modal/lost_modes.h"

namespace lcp {

// Constants, eigenvalues and vectors at every step of the grid.
void runFirstLoop();

// Modal and phase-domain functions at step k; notes modes that were lost.
void takeSecondStep(int k, LostModes& lost);

// Modes at the frequency of the report.
void runReportModes();

// The fits of the mode model, of the phase model (Yc before H) and of the MFDTD model.
void runModeFits();
void runAdmittanceFit();
void runPropagationFit();
void runSeriesFit();

// The enforcement between the fits of the phase model and its file, and the check of its passivity.
void runEnforcement();
void runPassivityCheck();
bool enforcementChangesYc(); // beside H
bool checksOnGrid();         // on the frequencies of the passivity options alone

} // namespace lcp

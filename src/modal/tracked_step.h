// One step of the grid whose modes are followed from the step before.
#pragma once

#include <string_view>

namespace lcp {

// On the console: the title of the steps at which a mode could not be followed in one go, the line
// of each of them, and the mark of a walk whose shortest sub-step failed.
constexpr std::string_view NEWTONTITLE = "NEWTON-RAPHSON EIGENVALUE PROCEDURE";
constexpr std::string_view STEPLINE = " Frequency Step #{}: {} Hz";
constexpr std::string_view GIVENUP = "|>";

// Starts a solve: the messages of a failed step are due again.
void startTracking();

// Solves step k at its grid frequency; when a mode cannot be followed that far in one go, walks
// there in decimal sub-steps.
void trackedStep(int k);

// Takes the current eigenvalues and vectors as the solution of step k and as the start of k + 1.
void acceptSolution(int k);

} // namespace lcp

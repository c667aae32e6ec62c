// Solves one grid step by following the modes from the previous step.
#pragma once

#include <string_view>

namespace lcp {

// Console texts: title of the steps at which a mode could not be followed directly, line of each
// such step, and mark of a walk whose shortest sub-step failed.
constexpr std::string_view NEWTONTITLE = "NEWTON-RAPHSON EIGENVALUE PROCEDURE";
constexpr std::string_view STEPLINE = " Frequency Step #{}: {} Hz";
constexpr std::string_view GIVENUP = "|>";

// Starts a solve: the messages of failed steps will be printed again.
void startTracking();

// Solves step k at its grid frequency; if a mode cannot be followed directly, in decimal sub-steps.
void trackedStep(int k);

// Stores the current eigenvalues and vectors as the solution of step k and as the start of k + 1.
void acceptSolution(int k);

} // namespace lcp

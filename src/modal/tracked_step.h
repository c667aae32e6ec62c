// One step of the grid whose modes are followed from the step before.
#pragma once

namespace lcp {

// Starts a solve: the messages of a failed step are due again.
void startTracking();

// Solves step k at its grid frequency; when a mode cannot be followed that far in one go, walks
// there in decimal sub-steps.
void trackedStep(int k);

// Takes the current eigenvalues and vectors as the solution of step k and as the start of k + 1.
void acceptSolution(int k);

} // namespace lcp

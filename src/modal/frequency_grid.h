// The frequency grid of a solve.
#pragma once

namespace lcp {

// Sets NFREQ, DLOGW and LOGW0 for the selected model. Ends the run with a message and exit status 1
// without a model, for a grid that exceeds the stores or has no logarithm, and for an invalid table
// of Y and Z.
void layGrid();

// Frequency of step k on the grid, Hz.
double gridFrequency(int k);

// Stores the frequency of step k and its logarithms.
void storeFrequency(int k, double f);

// True for the extra step at the end that evaluates the constant transformation.
bool isConstantTransformStep(int k);

} // namespace lcp

// The frequency grid of a solve.
#pragma once

namespace lcp {

// Chooses NFREQ, DLOGW and LOGW0 for the selected model. Without a model, with a grid that the
// stores cannot hold or no logarithm can lay, or with a table of Y and Z that is no function of
// frequency, the run ends with a message, exit status 1.
void layGrid();

// Frequency of step k as the grid has it, Hz.
double gridFrequency(int k);

// Stores the frequency of step k with its logarithms.
void storeFrequency(int k, double f);

// True at the step, out of order at the end, that serves the constant transformation.
bool isConstantTransformStep(int k);

} // namespace lcp

// Passivity of the fitted phase-domain model.
#pragma once

namespace lcp {

// Looks for negative eigenvalues of the real part of the nodal admittance of FITMODEL over the grid
// that the passivity options lay, and lists the bands of violation with the smallest eigenvalue of
// each on the console. Changes nothing; a violation is no error. Options without a grid, or a model
// that has no finite value at a frequency of it, end the run with a message, exit status 1.
void PASSCHK();

} // namespace lcp

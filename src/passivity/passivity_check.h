// Passivity of the fitted phase-domain model.
#pragma once

#include <string_view>

namespace lcp {

// The last line of a check.
constexpr std::string_view PASSIVELINE = " No passivity violations detected.";
constexpr std::string_view VIOLATEDLINE =
    " Passivity violations detected. See help for further details";

// Looks for negative eigenvalues of the real part of the nodal admittance of FITMODEL over the grid
// that the passivity options lay, and lists the bands of violation with the smallest eigenvalue of
// each on the console. Changes nothing; a violation is no error. Options without a grid, or a model
// that has no finite value at a frequency of it, end the run with a message, exit status 1.
void PASSCHK();

} // namespace lcp

// Checks the passivity of the fitted phase-domain model.
#pragma once

#include <string_view>

namespace lcp {

// The last line of a check.
constexpr std::string_view PASSIVELINE = " No passivity violations detected.";
constexpr std::string_view VIOLATEDLINE =
    " Passivity violations detected. See help for further details";

// Searches for negative eigenvalues of the real part of the nodal admittance of FITMODEL on the
// grid of the passivity options, and prints the bands of violation with the smallest eigenvalue of
// each. Changes nothing; a violation is not an error. Options without a valid grid, or a model that
// is not finite at a grid frequency, end the run with a message and exit status 1.
void PASSCHK();

} // namespace lcp

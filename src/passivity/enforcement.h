// Enforces passivity of the fitted model on a grid of frequencies.
//
// Small changes of the residues of H remove negative eigenvalues of the nodal admittance of the
// line.
#pragma once

#include "passivity/enforcement_store.h"
#include "store/option_groups.h"

#include <string_view>

namespace lcp {

// Console lines on the progress of an enforcement.
constexpr std::string_view NOVIOLATIONLINE = " There are no passivity violations  ";
constexpr std::string_view INITIALLINE = " Initial passivity violations  ";
constexpr std::string_view NOSOLUTIONLINE = " Constrained solution failed";
constexpr std::string_view ENFORCEDLINE =
    " There are no passivity violations. Passivity is sucessfully enforced  ";

// Enforces passivity of the model in the enforcement store, keeping H close at the NS frequencies
// WFREQ, rad/s. Returns true if the residues FRES give a model that is passive on the grid and
// whose H changed by no more than the allowed error; FITMODEL is not changed. Prints the
// iterations.
[[nodiscard]] bool PASSENF(const PassivityOptions& P, const FreqCurve& WFREQ, int NS);

// Solves the current quadratic program and forms FPERT from its solution. Without a solution,
// prints a message and returns false.
[[nodiscard]] bool QPRUN();

// The enforcement between fit and model file: copies FITMODEL to the store, and the residues back
// if they were improved.
void enforcePassivity();

} // namespace lcp

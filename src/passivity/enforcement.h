// Enforcement of passivity: small changes of the residues of H until the nodal admittance of the
// line has no negative eigenvalue on a grid of frequencies.
#pragma once

#include "passivity/enforcement_store.h"
#include "store/option_groups.h"

#include <string_view>

namespace lcp {

// Lines on the console that tell how far an enforcement has come.
constexpr std::string_view NOVIOLATIONLINE = " There are no passivity violations  ";
constexpr std::string_view INITIALLINE = " Initial passivity violations  ";
constexpr std::string_view NOSOLUTIONLINE = " Constrained solution failed";
constexpr std::string_view ENFORCEDLINE =
    " There are no passivity violations. Passivity is sucessfully enforced  ";

// Enforces passivity on the model in the enforcement store, H to be held at the NS frequencies
// WFREQ, rad/s. True when the residues FRES are those of a model that is passive on the grid and
// whose H moved by no more than the error allowed; FITMODEL stays as it is. Prints the course of
// the iterations.
[[nodiscard]] bool PASSENF(const PassivityOptions& P, const FreqCurve& WFREQ, int NS);

// Solves the quadratic program at hand and forms FPERT from its solution. False, with a message,
// when it has none.
[[nodiscard]] bool QPRUN();

// The enforcement between fit and model file: takes FITMODEL, and gives its residues back when they
// were improved.
void enforcePassivity();

} // namespace lcp

// Enforcement of passivity over the whole spectrum and all frequencies.
#pragma once

#include <string_view>

namespace lcp {

// Warning that the model stays as fitted.
constexpr std::string_view NOTENFORCED = "Passivity is not enforced, {}.";

// The enforcement between fit and model file. Changes the residues of H in FITMODEL and, if those
// are not enough, the residues and constant term of Yc, provided that the resulting model is
// passive and H and Yc changed by no more than the allowed error. Otherwise FITMODEL stays as
// fitted, with a warning on the console and exit status 2. Prints the iterations.
void enforcePassivityImproved();

// Checks FITMODEL by the same scan and prints the bands with negative eigenvalues. Changes nothing;
// a violation is not an error.
void checkPassivityImproved();

} // namespace lcp

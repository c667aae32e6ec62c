// Enforcement of passivity over the whole spectrum and all frequencies, beside the default one of
// passivity/enforcement.
#pragma once

#include <string_view>

namespace lcp {

// The warning of a model that stays as it was fitted.
constexpr std::string_view NOTENFORCED = "Passivity is not enforced, {}.";

// The enforcement between fit and model file: takes FITMODEL, and puts the changed residues of H,
// and where those are not enough the residues and the constant term of Yc, in it when the model
// that goes to the file is passive and H moved by no more than the error allowed. Otherwise
// FITMODEL stays as it was fitted, with a warning on the console and exit status 2. Prints its
// course.
void enforcePassivityImproved();

// The check of FITMODEL by the same scan: prints the bands with negative eigenvalues. Changes
// nothing; a violation is no error.
void checkPassivityImproved();

} // namespace lcp

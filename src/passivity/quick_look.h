// A cheap look at the passivity of every fitted phase model, on its way to the file.
#pragma once

#include <string_view>

namespace lcp {

// Where a look found a model that generates power.
struct PowerFound {
  double value; // smallest eigenvalue of the nodal admittance of both ends, S; 0 without a find
  double f;     // Hz
};

// FITMODEL at zero and at some sixty frequencies to a decade above the NS of the fit, WFREQ in
// rad/s, both halves of the spectrum. Changes nothing, prints nothing, and passes over what it
// cannot invert. A band between its frequencies stays unseen.
[[nodiscard]] PowerFound lookForPower();

// One line on the error stream when there is any, with what mends it.
void warnOfPower(std::string_view remedy);

} // namespace lcp

// Carson's integral for the earth return of two conductors above ground, by numerical integration.
//
//   J(z, theta) = 2 * integral from 0 to infinity of f(t) cos(t sin theta) dt
//   f(t) = exp(-t cos theta) / (t + W(t)),  W(t) = sqrt(t^2 + z^2)
//
// z is the distance from one conductor to the image of the other, divided by the complex depth of
// the ground; theta is the angle of that distance from the vertical.
#pragma once

#include "base/matrix.h"

#include <string_view>

namespace lcp {

// Reports a stage that ran out of panels: its name, this text, |z| and the text that follows it.
constexpr std::string_view NOTCONVERGED = "Failed to converge";
void sayNotConverged(std::string_view stage, Complex z, int width, std::string_view behind);

// J(z, theta), dimensionless; theta in radians, its sign does not matter. If a stage runs out of
// panels, a message is printed and the sum so far is returned.
Complex CARSINT(Complex z, double theta);

// A sum over panels, the number of panels of each stage, and whether each stage converged.
struct CarsonSum {
  Complex A;
  int geometric = 0; // panels that grow with t, below t = 0.05
  int linear = 0;    // the closing panel and the panels of fixed width
  bool geometricDone = true;
  bool linearDone = false;
};

// The sum computed directly from the formulas, for any argument. `parts` splits every panel into
// equal parts, to show how much the result depends on the panel width; the integral ends at or near
// the same panel.
CarsonSum carsonPanels(Complex z, double theta, int parts = 1);

// The same sum over the same panels, more than ten times faster. It agrees with carsonPanels to
// 1e-14 of J, or of the sum of |f| where the cosine makes J small against it (theta near pi / 2).
// Valid only if carsonBlocksTake is true: |z| from 1e-10 to 1e60, Re z > 0, Im z up to a thousand
// times Re z, and cos theta not negative.
CarsonSum carsonBlocks(Complex z, double theta);
bool carsonBlocksTake(Complex z, double theta);

} // namespace lcp

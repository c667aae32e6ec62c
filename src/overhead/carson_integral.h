// Carson's integral: the earth return of two conductors above ground, by numerical integration.
//
//   J(z, theta) = 2 * integral from 0 to infinity of f(t) cos(t sin theta) dt
//   f(t) = exp(-t cos theta) / (t + W(t)),  W(t) = sqrt(t^2 + z^2)
//
// z is the distance from a conductor to the image of the other over the complex depth of the
// ground, theta the angle of that distance against the vertical.
#pragma once

#include "base/matrix.h"

#include <string_view>

namespace lcp {

// The line of a stage that runs out of panels: this text, what stands ahead of |z| and behind it.
constexpr std::string_view NOTCONVERGED = "Failed to converge";
void sayNotConverged(std::string_view stage, Complex z, int width, std::string_view behind);

// J(z, theta), dimensionless. theta in radians, the sign is of no account. A stage that runs out of
// panels says so on the console, and the sum reached is the result.
Complex CARSINT(Complex z, double theta);

// A sum over panels, how many of them each stage took, and whether the stage came to its end.
struct CarsonSum {
  Complex A;
  int geometric = 0; // panels that grow with t, below t = 0.05
  int linear = 0;    // the closing panel and the panels of fixed width
  bool geometricDone = true;
  bool linearDone = false;
};

// The sum straight from the formulas, for any argument. Cutting every panel into equal parts shows
// how far the answer hangs on their width; the integral ends at the same panel or close to it.
CarsonSum carsonPanels(Complex z, double theta, int parts = 1);

// The same sum over the same panels, more than ten times faster: equal to carsonPanels to 1e-14 of
// J, or of the sum of |f| where the cosine makes J small against it (theta near pi / 2). Only for
// the arguments that carsonBlocksTake admits: |z| of 1e-10 to 1e60, Re z > 0 with Im z up to a
// thousand times as large, and cos theta not negative.
CarsonSum carsonBlocks(Complex z, double theta);
bool carsonBlocksTake(Complex z, double theta);

} // namespace lcp

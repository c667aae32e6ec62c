// Integrals of the exact formula for the earth return of buried cables, scaled against overflow.
//
//   KEXPINT(z)       integral of exp(z - W) / W dt                  = exp(z) K0(z)
//   KEXPONE(z)       integral of exp(z - W) dt                      = z exp(z) K1(z)
//   CBMUT(z, theta)  2 * integral of g(t) cos(t sin theta) dt
//                    g(t) = exp(cos theta (z - W)) / (t + W)
//
// each from 0 to infinity, with W(t) = sqrt(t^2 + z^2), the principal root. The exponential of the
// decay is factored out so that nothing overflows or underflows. z is a distance divided by the
// complex depth of the soil, Re z > 0; K0 and K1 are modified Bessel functions.
#pragma once

#include "base/matrix.h"

namespace lcp {

// All three are dimensionless. If a stage runs out of panels, a message is printed and the sum so
// far is returned. KEXPONE accepts z = 0, where it is 1.
Complex KEXPINT(Complex z);
Complex KEXPONE(Complex z);
Complex CBMUT(Complex z, double theta); // theta in radians, from 0 to below pi / 2

// An integral as a sum over panels, the number of panels of each stage, and whether each converged.
struct PanelSum {
  Complex S;
  int growing = 0; // panels that grow by 2 % from t = 0
  int graded = 0;  // panels of the graded stage, and the one that closes the gap before it
  bool growingDone = true;
  bool gradedDone = false;
};

// The same without messages. `parts` splits every panel into equal parts, to show how much the
// result depends on the panel width; the integral ends at or near the same panel.
PanelSum kexpintPanels(Complex z, int parts = 1);
PanelSum kexponePanels(Complex z, int parts = 1);
PanelSum cbmutPanels(Complex z, double theta, int parts = 1);

} // namespace lcp

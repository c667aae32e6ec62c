// Earth return of buried cables: the integrals of its exact formula, with the exponential of their
// decay taken out so that no factor over- or underflows.
//
//   KEXPINT(z)       integral of exp(z - W) / W dt                  = exp(z) K0(z)
//   KEXPONE(z)       integral of exp(z - W) dt                      = z exp(z) K1(z)
//   CBMUT(z, theta)  2 * integral of g(t) cos(t sin theta) dt
//                    g(t) = exp(cos theta (z - W)) / (t + W)
//
// each from 0 to infinity, with W(t) = sqrt(t^2 + z^2), the principal root. z is a distance over
// the complex depth of the soil, Re z > 0; K0 and K1 are the modified Bessel functions.
#pragma once

#include "base/matrix.h"

namespace lcp {

// All three are dimensionless. A stage that runs out of panels says so on the console, and the sum
// reached is the result. KEXPONE admits z = 0, where it is 1.
Complex KEXPINT(Complex z);
Complex KEXPONE(Complex z);
Complex CBMUT(Complex z, double theta); // theta in radians, from 0 to below pi / 2

// An integral as a sum over panels, how many each stage added, and whether it came to its end.
struct PanelSum {
  Complex S;
  int growing = 0; // panels that grow by 2 % from t = 0 on
  int graded = 0;  // panels of the last stage, and the one that closes up to it
  bool growingDone = true;
  bool gradedDone = false;
};

// The same without a word on the console. Cutting every panel into equal parts shows how far the
// answer hangs on their width; the integral ends at the same panel or close to it.
PanelSum kexpintPanels(Complex z, int parts = 1);
PanelSum kexponePanels(Complex z, int parts = 1);
PanelSum cbmutPanels(Complex z, double theta, int parts = 1);

} // namespace lcp

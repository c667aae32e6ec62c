// Internal impedance of a round conductor: skin effect in closed form.
#pragma once

#include "base/matrix.h"

namespace lcp {

// Hyperbolic cotangent. z = 0 is no legal argument; a very large real part gives 1.
Complex COTH(Complex z);

// Internal impedance of conductor i of the conductor table, ohm/m, at the angular frequency w > 0.
Complex ZINT(double w, int i);

} // namespace lcp

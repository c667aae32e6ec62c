// The module with the ball arithmetic, loaded when it is first needed.
#pragma once

#include "kernels/bessel_balls.h"

namespace lcp {

// The routine of the module, the same at every call. Without the module the run ends with a
// message, exit status 1. In a program linked against the shared libraries it is the routine
// itself.
BesselRoutine besselRoutine();

} // namespace lcp

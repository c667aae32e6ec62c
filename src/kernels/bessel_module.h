// Loads the module with the ball arithmetic when it is first needed.
#pragma once

#include "kernels/bessel_balls.h"

namespace lcp {

// Returns the routine of the module, the same one at every call. If the module cannot be loaded,
// the run ends with a message and exit status 1. A program linked against the shared libraries gets
// the routine directly.
BesselRoutine besselRoutine();

} // namespace lcp

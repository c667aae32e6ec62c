// Checks materials and walls that the formulas of a cable system need.
#pragma once

namespace lcp {

// A metal of resistivity or permeability 0, or an insulator of permittivity 0, ends the run with a
// message and exit status 1. Other values that are not positive, and a pipe whose radii do not
// increase outwards, are reported on the error stream.
void checkLayers();

} // namespace lcp

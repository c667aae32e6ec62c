// Materials and walls that the formulas of a cable system cannot do without.
#pragma once

namespace lcp {

// A metal of resistivity or permeability 0, and an insulator of permittivity 0, end the run with a
// message, exit status 1. Other values that are not above 0, and a pipe whose radii do not grow
// outwards, get a line on the error stream.
void checkLayers();

} // namespace lcp

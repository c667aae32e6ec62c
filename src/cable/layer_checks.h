// Materials and walls that the formulas of a cable system cannot do without.
#pragma once

namespace lcp {

// A cable or a pipe of a resistivity, permeability or permittivity that is not above 0, and a pipe
// whose radii do not grow outwards, end the run with a message, exit status 1.
void checkLayers();

} // namespace lcp

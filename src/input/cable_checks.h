// Checks of the geometry of cables and pipes. Each ends the run at the first fault that it finds,
// with a message, exit status 1.
#pragma once

namespace lcp {

// Numbers without gaps, no cable on another or outside its pipe, radii that grow, semi-conducting
// layers inside the insulation, and something insulated in the system. Folds the semi-conducting
// layers into the permittivity of the first insulator.
void checkCables();

// The number of the pipe, and no cable overlapping it from outside.
void checkPipes();

} // namespace lcp

// Checks the geometry of cables and pipes.
//
// Each check ends the run at the first error, with a message and exit status 1.
#pragma once

namespace lcp {

// Checks that cable numbers have no gaps, no cable overlaps another or leaves its pipe, radii
// increase, semi-conducting layers fit into the insulation, and something in the system is
// insulated. Includes the semi-conducting layers in the permittivity of the first insulator.
void checkCables();

// Checks the number of the pipe and that no cable overlaps it from outside.
void checkPipes();

} // namespace lcp

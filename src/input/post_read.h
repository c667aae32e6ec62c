// What follows the last line of the description file: checks, derived data, order of the tables.
#pragma once

namespace lcp {

// Ends the run at the first failed check, exit status 1.
void postReadPass();

// No two physical conductors may stand at one place.
void checkConductorPositions();

} // namespace lcp

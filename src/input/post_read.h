// Checks, derived data and table order after the last line of the description file.
#pragma once

namespace lcp {

// Performs all of these; the first failed check ends the run with exit status 1.
void postReadPass();

// Checks that no two physical conductors have the same position.
void checkConductorPositions();

} // namespace lcp

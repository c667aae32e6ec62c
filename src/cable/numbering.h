// Numbering of the conductors of a cable system.
#pragma once

#include "cable/cable_store.h"

namespace lcp {

// Numbers the conductors of the cables and the pipe of the run store and lists the cables inside
// the pipe.
void numberConductors(CableNumbering& N);

} // namespace lcp

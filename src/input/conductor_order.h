// Order of the conductor table: equivalent conductors first, in node order, then the members of
// bundles, then the eliminated ground wires.
#pragma once

namespace lcp {

// Brings the equivalent conductors to the front and the bundle members behind them. On a line their
// number must be NC, else the run ends with a message, exit status 1; on a cable system it
// becomes NC.
void orderConductors();

// Puts the first NC entries into node order: entry p is connected to node p. A phase value that is
// missing or out of range ends the run with a message, exit status 1.
void orderNodes();

} // namespace lcp

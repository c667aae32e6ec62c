// Orders the conductor table: equivalent conductors in node order, bundle members, eliminated
// wires.
#pragma once

namespace lcp {

// Moves the equivalent conductors to the front, followed by the bundle members and the eliminated
// ground wires. On a line their number must be NC, otherwise the run ends with a message and exit
// status 1; on a cable system NC is set to it.
void orderConductors();

// Sorts the first NC entries into node order: entry p is connected to node p. A missing or
// out-of-range phase value ends the run with a message and exit status 1.
void orderNodes();

} // namespace lcp

// The report step of a solve, at the display frequency.
#pragma once

namespace lcp {

// Opens the report, writes all sections and closes it; prints a message if it cannot be opened.
// Prints the simulator's load-flow line. Afterwards Y, Z and the modal data in the solve store are
// those at DISPFREQ.
void runReport();

} // namespace lcp

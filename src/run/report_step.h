// The report step of a solve: what a user reads at the display frequency.
#pragma once

namespace lcp {

// Opens the report, writes all sections and closes it; without its file a message. Prints the load
// flow line of the simulator. Afterwards Y, Z and the modal data in the solve store are those of
// DISPFREQ.
void runReport();

} // namespace lcp

// The report: what a user reads of a solve at the display frequency.
#pragma once

#include "base/text_file.h"

namespace lcp {

// Writes all sections. SOLVEDATA.first holds YMAT, ZMAT, PMAT at DISPFREQ; afterwards the modal
// data in the solve store are those of DISPFREQ. Prints the load flow line of the simulator.
void writeReport(TextFile& file);

} // namespace lcp

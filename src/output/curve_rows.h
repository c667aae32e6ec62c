// The numbers of the detail curve files.
//
// Constants, modes and impedances at the ends of the line; sampled and fitted functions of the
// models.
#pragma once

#include "output/curve_table.h"

namespace lcp {

struct CurveSteps {
  int first, last; // steps of the grid
  bool empty() const { return last < first; }
};

// Writes the rows of a file that has its heading, and closes it. Does nothing if the run has no
// such file.
void writeCurve(CurveId id, CurveSteps steps);

// Overhead lines of three conductors: sending-end phase voltages for 3 A into the first phase, with
// the far end shorted and open. One row per step, written in the second frequency loop, whose TIINV
// is used.
void openSentVoltages();
void writeSentVoltages(int k);
void closeSentVoltages();

} // namespace lcp

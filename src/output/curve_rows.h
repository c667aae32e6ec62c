// The numbers of the detail curve files: constants, modes and impedances at the ends of the line;
// sampled and fitted functions of the models.
#pragma once

#include "output/curve_table.h"

namespace lcp {

struct CurveSteps {
  int first, last; // steps of the grid
  bool empty() const { return last < first; }
};

// Writes the rows of a file that has its header, and closes it; none when the run has no such file.
void writeCurve(CurveId id, CurveSteps steps);

// Three conductors overhead: voltages of the phases at the sending end for 3 A in the first, with
// the far end shorted and open. A row a step, in the second frequency loop, whose TIINV it takes.
void openSentVoltages();
void writeSentVoltages(int k);
void closeSentVoltages();

} // namespace lcp

// Load flow data of a cable system: that of its cores, with the sheaths and the pipe grounded.
#pragma once

#include "store/solvedata.h"

namespace lcp {

// True for 2, 3 or 6 buried cables.
bool hasCoreSequences();

// What a cable system grounds of its own.
struct Grounding {
  Table<int, MAXCABLE> CBGLAST;
  int PIPEGND;
};

// Leaves Y and Z of the cores alone in SOLVEDATA.first, at the frequency f, Hz: one conductor a
// cable, three cables ideally transposed, two circuits of three each and against the other.
Grounding groundSheaths(double f);

// Grounds what the system grounds of its own again, and computes its constants at f.
void restoreSheaths(const Grounding& saved, double f);

} // namespace lcp

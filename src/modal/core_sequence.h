// Load-flow data of a cable system: those of its cores, with sheaths and pipe grounded.
#pragma once

#include "store/solvedata.h"

namespace lcp {

// True for 2, 3 or 6 buried cables.
bool hasCoreSequences();

// The original grounding of a cable system.
struct Grounding {
  Table<int, MAXCABLE> CBGLAST;
  int PIPEGND;
};

// Grounds the sheaths and computes Y and Z of the cores in SOLVEDATA.first at frequency f, Hz: one
// conductor per cable, three cables ideally transposed, two circuits of three each averaged
// separately and against each other. Returns the original grounding.
Grounding groundSheaths(double f);

// Restores the original grounding and recomputes the constants at f, Hz.
void restoreSheaths(const Grounding& saved, double f);

} // namespace lcp

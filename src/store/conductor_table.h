// Run store, conductor group: the physical conductors, one entry per wire.
#pragma once

#include "base/table.h"
#include "store/capacities.h"

namespace lcp {

// Role of an entry (CMAP); j > 0 marks a sub-conductor of the bundle whose main conductor is entry
// j.
constexpr int MAPMAIN = 0;        // main conductor of a phase
constexpr int MAPELIMINATED = -1; // ground wire, eliminated
constexpr int MAPKEPT = -2;       // ground wire, kept

using CondReals = Table<double, MAXCOND>;
using CondInts = Table<int, MAXCOND>;
using CondFlags = Table<bool, MAXCOND>;

struct ConductorTable {
  int NCOND = 0;      // entries in use
  int NCIRC = 0;      // circuits, including groups of kept ground wires
  int NTOWER = 0;     // towers
  bool ALL3PH = true; // every circuit so far has three conductors
  int UNIQGW = 1;     // 0: the first ground wire has its own data

  CondReals CX;     // horizontal position, m
  CondReals CY;     // height at the tower, m
  CondReals CSAG;   // sag at mid-span, m
  CondReals CYAVG;  // average height, CY - 2/3 CSAG, m
  CondReals CRDC;   // DC resistance, ohm/m
  CondReals CRAD;   // outer radius, m
  CondReals CSHUNT; // shunt conductance, S/m
  CondReals CTHICK; // wall thickness of a tube, m
  CondReals CMUR;   // relative permeability
  CondReals CSTRAD; // strand radius, m
  CondReals CNOUT;  // number of strands in the outer layer
  CondReals CNTOT;  // number of strands in total
  CondFlags CTUBE;  // tubular: CTHICK applies; takes precedence over CSTRND
  CondFlags CSTRND; // stranded: CSTRAD, CNOUT, CNTOT apply
  CondInts CCIRC;   // circuit number
  CondInts CTRANSP; // 1: the circuit is transposed
  CondInts CPHASE;  // connection node
  CondInts CMAP;    // role, see above

  constexpr ConductorTable() {
    CMUR.fill(1.0);
    CNOUT.fill(1.0);
    CNTOT.fill(1.0);
  }
};

} // namespace lcp

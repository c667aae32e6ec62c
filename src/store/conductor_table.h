// Group of the run store: the physical conductors, one entry a wire.
#pragma once

#include "base/table.h"
#include "store/capacities.h"

namespace lcp {

// Roles of an entry; j > 0 is a sub-conductor of the bundle of entry j.
constexpr int MAPMAIN = 0;        // main conductor of a phase
constexpr int MAPELIMINATED = -1; // ground wire, eliminated
constexpr int MAPKEPT = -2;       // ground wire, kept

using CondReals = Table<double, MAXCOND>;
using CondInts = Table<int, MAXCOND>;
using CondFlags = Table<bool, MAXCOND>;

struct ConductorTable {
  int NCOND = 0;      // entries in use
  int NCIRC = 0;      // circuits, kept ground-wire groups counted with them
  int NTOWER = 0;     // towers
  bool ALL3PH = true; // every circuit so far has three conductors
  int UNIQGW = 1;     // 0: the first ground wire has data of its own

  CondReals CX;     // horizontal position, m
  CondReals CY;     // height at the tower, m
  CondReals CSAG;   // sag at mid-span, m
  CondReals CYAVG;  // average height, CY - 2/3 CSAG, m
  CondReals CRDC;   // DC resistance, ohm/m
  CondReals CRAD;   // outer radius, m
  CondReals CSHUNT; // shunt conductance, S/m
  CondReals CTHICK; // wall of a tube, m
  CondReals CMUR;   // relative permeability, 1
  CondReals CSTRAD; // strand radius, m
  CondReals CNOUT;  // strands of the outer layer, 1
  CondReals CNTOT;  // strands in all, 1
  CondFlags CTUBE;  // tubular: CTHICK applies; goes before CSTRND
  CondFlags CSTRND; // stranded: CSTRAD, CNOUT, CNTOT apply
  CondInts CCIRC;   // circuit number
  CondInts CTRANSP; // 1: the circuit is transposed
  CondInts CPHASE;  // connection node
  CondInts CMAP;    // role

  constexpr ConductorTable() {
    CMUR.fill(1.0);
    CNOUT.fill(1.0);
    CNTOT.fill(1.0);
  }
};

} // namespace lcp

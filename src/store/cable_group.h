// Group of the run store: counters of the cable sections.
#pragma once

namespace lcp {

struct CableTable {
  int NCABLE = 0;       // cables read
  bool ANYOVHD = false; // overhead conductors stand in the cable table
  int NPIPE = 0;        // pipes read
  bool PIPEF = false;   // the system is pipe-type
};

} // namespace lcp

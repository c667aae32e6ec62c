// Run store, run groups: run control and line summary.
#pragma once

#include "base/table.h"
#include "store/capacities.h"

namespace lcp {

using FileName = TextField<FILENAMELEN>;

// Data routes of a run.
constexpr int ROUTENONE = -10;    // nothing chosen
constexpr int ROUTECONSTANTS = 0; // line constants from the geometry
constexpr int ROUTEMANUAL = 1;    // data entered by hand
constexpr int ROUTEMULTIPLE = 2;  // a table of Y and Z over frequency

// Kinds of system.
constexpr int OVERHEADLINE = 0;
constexpr int CABLESYSTEM = 1;
constexpr int FOURWIRECABLE = 2;

struct RunControl {
  FileName FNAME;        // input file
  FileName FOUTR;        // report file of the current step
  FileName FOUTM;        // line model file of the current step
  double LINELEN = 0;    // line length of the current step, m; all stages use this one
  int ISCABLE = 0;       // kind of system, from the extension of FNAME
  int DATAFMT = 0;       // route, set by the reader
  int FILESREAD = 0;     // descriptions read by this process
  bool WARNFLAG = false; // a warning was given: the run ends with exit status 2
  bool DEBUGF = false;   // the debug file is open

  bool fromTable() const { return DATAFMT == ROUTEMULTIPLE; }
};

struct LineSummary {
  TextField<LINENAMELEN> LNAME; // names the curve files
  int LNAMELEN = 10;            // position of the first blank in LNAME
  int NC = 0;                   // equivalent conductors
  double SSFREQ = 60.0;         // steady-state frequency, Hz
};

} // namespace lcp

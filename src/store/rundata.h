// The run-wide input store. The reader fills it, every later stage reads it.
//
// The geometry does not change while a step is solved; WARNFLAG, CONSTT and LINELEN do.
#pragma once

#include "store/cable_group.h"
#include "store/conductor_table.h"
#include "store/ground_group.h"
#include "store/manual_group.h"
#include "store/option_groups.h"
#include "store/run_groups.h"

namespace lcp {

struct RunData {
  RunControl run;
  LineSummary line;
  ConductorTable cond;
  Ground ground;
  CableTable cable;
  ModelChoice model;
  BergeronOptions bergeron;
  FlagLines flags;
  FitOptions fit;
  PassivityOptions passivity;
  ManualData manual;
  DisplayOptions display;
  HaloOptions halo;

  // Every group but run control back to its defaults.
  void resetInput();
};

extern RunData RUNDATA;

} // namespace lcp

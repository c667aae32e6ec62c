// The input store of a run: filled by the reader, read by every later stage.
//
// Fields that change after reading, each only in the routine named:
//
//   LINELEN, FOUTR, FOUTM   nameOutputs and the loop over length steps (run): once per step
//   WARNFLAG                warn: from false to true, anywhere
//   NC, NCOND               setConductors: what the cable constants leave of a system
//   CBGLAST, CBELIM1 to 3   eliminateSheath (cable/crossbonding): a crossbonded sheath is grounded
//   CONSTT                  layFittedGrid (modal/frequency_grid): in phase and MFDTD models
//   VBASEDISP, MVABASEDISP  setUnitBases: when one of the bases is missing
//   CBGLAST, PIPEGND        groundSheaths (modal/core_sequence), until restoreSheaths
//
// All but the last keep their new values for the following length steps; solvedata.h lists the
// consequences.
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
  NumericalOptions numerics;
  HaloOptions halo;

  // Resets every group but run control to its defaults.
  void resetInput();

  // Sets the number of equivalent conductors and of all conductors of a cable system.
  void setConductors(int NC, int NCOND);

  // Sets both per-unit bases of the display to 1 for the rest of the run.
  void setUnitBases();
};

// Constant-initialised: no code runs for it at program start.
extern constinit RunData RUNDATA;

// Records that a warning was given: the run ends with exit status 2.
void warn();

} // namespace lcp

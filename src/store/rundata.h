// The run-wide input store. The reader fills it, every later stage reads it.
//
// What changes behind the reader, each by the routine named and by no other:
//
//   LINELEN, FOUTR, FOUTM   nameOutputs and the loop over the steps (run): one length step each
//   WARNFLAG                warn: from false to true, anywhere
//   NC, NCOND               setConductors: what the cable constants leave of a system
//   CBGLAST, CBELIM1 to 3   eliminateSheath (cable/crossbonding): a crossbonded sheath is grounded
//   CONSTT                  layFittedGrid (modal/frequency_grid): of phase and MFDTD models
//   VBASEDISP, MVABASEDISP  setUnitBases: bases of which one is missing
//   CBGLAST, PIPEGND        groundSheaths (modal/core_sequence), until restoreSheaths
//
// All but the last stay for the steps that follow; solvedata.h tells what such a step sees of them.
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

  // Every group but run control back to its defaults.
  void resetInput();

  // Equivalent conductors and conductors in all, of a cable system.
  void setConductors(int NC, int NCOND);

  // Both bases of per-unit display become 1, for the rest of the run.
  void setUnitBases();
};

// A constant of the program file until it is written to: nothing is formed at the start.
extern constinit RunData RUNDATA;

// A warning was given: the run ends with exit status 2.
void warn();

} // namespace lcp

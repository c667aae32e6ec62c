#include "run/solve_driver.h"

#include "base/console.h"
#include "base/solve_error.h"
#include "base/stop.h"
#include "modal/first_loop.h"
#include "modal/frequency_grid.h"
#include "modal/line_constants.h"
#include "modal/lost_modes.h"
#include "modal/second_loop.h"
#include "modal/sequence.h"
#include "output/curve_files.h"
#include "output/pi_component.h"
#include "passivity/passivity_grid.h"
#include "run/methods.h"
#include "run/model_step.h"
#include "run/report_step.h"
#include "store/rundata.h"
#include "store/solvedata.h"

#include <cmath>
#include <fmt/format.h>

namespace lcp {

namespace {

constexpr double MOSTWEIGHT = 1.3407807929942596e+154; // its square does not overflow

void checkModel() {
  const ModelKind MODEL = RUNDATA.model.MODEL;
  if (MODEL != ModelKind::None && MODEL != ModelKind::Halo) return;
  console::line("***** CORVO.EXE - ERROR *****");
  console::print("Unknown Model Type: {}", static_cast<int>(MODEL));
  stop(1);
}

// Without conductors, means would be 0 / 0.
void checkConductors() {
  const bool countsLater = RUNDATA.run.ISCABLE != OVERHEADLINE && !RUNDATA.run.fromTable();
  if (RUNDATA.line.NC >= 1 || countsLater) return;
  console::openStars();
  console::line("The Line has no Conductors!");
  stopInStars();
}

// Refuses an invalid grid before anything is computed. A grid without frequencies finds no
// violation.
void checkPassivityGrid() {
  static FrequencyList grid;
  const PassivityOptions& P = RUNDATA.passivity;
  if (!RUNDATA.model.fitsPhases() || !(P.PFLOSET || P.PITERSET)) return;
  PASSGRID(P.PFLO, P.PFHI, P.NPFINC, P.PFDIST, grid);
  if (grid.NGRID > 0 || !checksOnGrid()) return;
  console::note(fmt::format("the passivity grid has no frequencies (increments {}, distribution "
                            "{}): no violation will be found",
                            P.NPFINC, P.PFDIST));
}

// A fit sums squares, which overflow for larger weights.
void checkWeights() {
  const FitOptions& F = RUNDATA.fit;
  if (!RUNDATA.model.fitted()) return;
  for (const double w : {F.WF1, F.WF2, F.WF3}) {
    if (std::fabs(w) <= MOSTWEIGHT) continue;
    console::openStars();
    console::print("Weighting Factor {:.4g} is out of Range, Maximum of {:.4g} Allowed!", w,
                   MOSTWEIGHT);
    stopInStars();
  }
}

// Modal and phase-domain functions at every step of the grid, and the sending-end voltages for
// their curve files. MFDTD has no modes.
void secondFrequencyLoop() {
  if (!RUNDATA.model.needsModes()) return;
  LostModes lost;
  for (int k = 1; k <= SOLVEDATA.grid.NFREQ; ++k) {
    takeSecondStep(k, lost);
    writeEndCurves(k);
  }
  lost.warn();
  if (RUNDATA.run.DEBUGF) console::line(" FINISHED SECOND FREQUENCY LOOP !");
}

// Where Y and Z are not computed, those of the last step are used.
void runComponent() {
  const FirstLoopStore& S = SOLVEDATA.first;
  const RunControl& R = RUNDATA.run;
  if (!RUNDATA.display.CREATEPI) return;
  const bool computed = R.DATAFMT != ROUTEMULTIPLE && R.ISCABLE != FOURWIRECABLE;
  if (computed) constantsAt(RUNDATA.line.SSFREQ);
  PISECT(S.YMAT, S.ZMAT, R.LINELEN);
}

} // namespace

void QUENT() {
  checkModel();
  checkConductors();
  checkPassivityGrid();
  checkBases();
  checkWeights();
  SOLVEDATA.first.IDEALT = isIdeallyTransposed();
  layGrid();
  headCurves();
  runFirstLoop();
  alignVectors();
  secondFrequencyLoop();
  if (RUNDATA.model.fitted()) formFitWeights();
  if (!runModelStep()) return;
  runComponent();
  if (RUNDATA.run.DATAFMT != ROUTEMULTIPLE) runReport();
}

} // namespace lcp

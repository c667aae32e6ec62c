#include "run/solve_driver.h"

#include "base/console.h"
#include "base/stop.h"
#include "base/text_file.h"
#include "modal/first_loop.h"
#include "modal/frequency_grid.h"
#include "modal/line_constants.h"
#include "modal/second_loop.h"
#include "output/manual_output.h"
#include "output/mode_model_file.h"
#include "output/model_file.h"
#include "output/output_file.h"
#include "output/phase_model_file.h"
#include "output/report.h"
#include "store/rundata.h"
#include "store/solvedata.h"

namespace lcp {

namespace {

void checkConductors() {
  if (RUNDATA.line.NC >= 1 || RUNDATA.run.ISCABLE != OVERHEADLINE) return;
  console::openStars();
  console::line("The Line has no Conductors!");
  console::closeStars();
  console::line("QUENT Ending!");
  stop(1);
}

void writeModel(TextFile& file) {
  const ModelChoice& M = RUNDATA.model;
  if (M.MODPI) writePiModel(file);
  if (M.MODBERG) writeBergeronModel(file);
  if (M.MODFDM) writeModeModel(file);
  if (M.MODFDP) writePhaseModel(file);
  if (M.MODMFDTD) unavailable("MFDTD Model");
}

// False when the model file cannot be opened, or replaced by the user's own.
bool runModel() {
  const ModelChoice& M = RUNDATA.model;
  TextFile file;
  if (!openOutput(file, RUNDATA.run.FOUTM)) return false;
  writeModel(file);
  file.close();
  const bool replaced = RUNDATA.display.MANOUT && (M.MODFDP || M.MODMFDTD);
  return !replaced || copyManualOutput();
}

void runComponent() {
  if (RUNDATA.display.CREATEPI) unavailable("Coupled Pi Component");
}

bool runReport() {
  TextFile file;
  if (!openOutput(file, RUNDATA.run.FOUTR)) return false;
  constantsAt(RUNDATA.display.DISPFREQ);
  writeReport(file);
  file.close();
  return true;
}

} // namespace

void QUENT() {
  checkConductors();
  SOLVEDATA.first.IDEALT = isIdeallyTransposed();
  layGrid();
  if (RUNDATA.model.fitted() && RUNDATA.fit.WDETAIL) unavailable("Detailed Output Files");
  firstFrequencyLoop();
  alignVectors();
  secondFrequencyLoop();
  if (RUNDATA.model.fitted()) formFitWeights();
  if (!runModel()) return;
  runComponent();
  if (RUNDATA.run.DATAFMT != ROUTEMULTIPLE) runReport();
}

} // namespace lcp

#include "run/solve_driver.h"

#include "base/console.h"
#include "base/solve_error.h"
#include "base/text_file.h"
#include "fit/passivity_grid.h"
#include "fit/series_fit.h"
#include "modal/first_loop.h"
#include "modal/frequency_grid.h"
#include "modal/line_constants.h"
#include "modal/second_loop.h"
#include "output/curve_files.h"
#include "output/manual_output.h"
#include "output/mfdtd_model_file.h"
#include "output/mode_model_file.h"
#include "output/model_file.h"
#include "output/output_file.h"
#include "output/phase_model_file.h"
#include "output/pi_component.h"
#include "output/report.h"
#include "store/rundata.h"
#include "store/solvedata.h"

namespace lcp {

namespace {

void checkConductors() {
  if (RUNDATA.line.NC >= 1 || RUNDATA.run.ISCABLE != OVERHEADLINE) return;
  console::openStars();
  console::line("The Line has no Conductors!");
  stopInStars();
}

// A grid that cannot be laid is refused before anything is computed.
void checkPassivityGrid() {
  static FrequencyList grid;
  const PassivityOptions& P = RUNDATA.passivity;
  if (!RUNDATA.model.MODFDP || !(P.PFLOSET || P.PITERSET)) return;
  PASSGRID(P.PFLO, P.PFHI, P.NPFINC, P.PFDIST, grid);
}

void writeModel(TextFile& file) {
  const ModelChoice& M = RUNDATA.model;
  if (M.MODPI) writePiModel(file);
  if (M.MODBERG) writeBergeronModel(file);
  if (M.MODFDM) writeModeModel(file);
  if (M.MODFDP) writePhaseModel(file);
  if (M.MODMFDTD) writeMfdtdModel(file);
}

// False when the model file cannot be opened, or replaced by the user's own.
bool runModel() {
  const ModelChoice& M = RUNDATA.model;
  TextFile file;
  if (M.MODMFDTD) {
    fitSeriesImpedance(); // before there is a file
    writeSeriesFitCurves(SERIESMODEL.ZFIT);
  }
  writePhaseLineCurves();
  if (!openOutput(file, RUNDATA.run.FOUTM)) return false;
  writeModel(file);
  file.close();
  writeModeCurves();
  writeSeriesLineCurves();
  const bool replaced = RUNDATA.display.MANOUT && (M.MODFDP || M.MODMFDTD);
  return !replaced || copyManualOutput();
}

// Y and Z that are not computed stay those of the last step.
void runComponent() {
  const FirstLoopStore& S = SOLVEDATA.first;
  const RunControl& R = RUNDATA.run;
  if (!RUNDATA.display.CREATEPI) return;
  const bool computed = R.DATAFMT != ROUTEMULTIPLE && R.ISCABLE != FOURWIRECABLE;
  if (computed) constantsAt(RUNDATA.line.SSFREQ);
  PISECT(S.YMAT, S.ZMAT, R.LINELEN);
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
  checkPassivityGrid();
  SOLVEDATA.first.IDEALT = isIdeallyTransposed();
  layGrid();
  headCurves();
  firstFrequencyLoop();
  alignVectors();
  secondFrequencyLoop();
  if (RUNDATA.model.fitted()) formFitWeights();
  writeEndCurves();
  if (!runModel()) return;
  runComponent();
  if (RUNDATA.run.DATAFMT != ROUTEMULTIPLE) runReport();
}

} // namespace lcp

#include "run/model_step.h"

#include "base/text_file.h"
#include "fit/fit_driver.h"
#include "modal/pi_model.h"
#include "modal/series_shunt.h"
#include "output/curve_files.h"
#include "output/fit_parameters.h"
#include "output/manual_output.h"
#include "output/mfdtd_model_file.h"
#include "output/mode_model_file.h"
#include "output/model_file.h"
#include "output/output_file.h"
#include "output/phase_model_file.h"
#include "passivity/quick_look.h"
#include "run/methods.h"
#include "store/rundata.h"

namespace lcp {

namespace {

SeriesShunt shunt;

void piModel(TextFile& file) {
  static LineMatrix YLC, ZLC;
  correctPi(YLC, ZLC);
  writePiModel(file, YLC, ZLC);
}

void modeModel(TextFile& file) {
  runModeFits();
  writeModeModel(file);
}

// The curves of the fitted Yc are written when they are final: before an enforcement that changes
// only H.
void FITDRIVE(TextFile& file) {
  const PassivityOptions& P = RUNDATA.passivity;
  const bool changes = P.PITERSET && enforcementChangesYc();
  runAdmittanceFit();
  if (!changes) writeAdmittanceFitCurves();
  runPropagationFit();
  if (P.PITERSET) runEnforcement();
  if (changes) writeAdmittanceFitCurves();
  writePropagationFitCurves();
  CHECKDELAYS();
  writePhaseModel(file);
  if (P.PFLOSET && !P.PITERSET) runPassivityCheck();
  warnOfPower(passivityRemedy());
}

// Steps that can end the run because of its data, done before the file is created.
void beforeTheFile() {
  if (RUNDATA.model.fitsSeries()) {
    runSeriesFit();
    writeSeriesFitCurves();
    formSeriesShunt(shunt);
  }
  writeLineCurvesBefore();
}

void writeModel(TextFile& file) {
  switch (RUNDATA.model.MODEL) {
  case ModelKind::Pi: piModel(file); break;
  case ModelKind::Bergeron: writeBergeronModel(file); break;
  case ModelKind::Mode: modeModel(file); break;
  case ModelKind::Phase: FITDRIVE(file); break;
  case ModelKind::Mfdtd: writeMfdtdModel(file, shunt); break;
  case ModelKind::None:
  case ModelKind::Halo: break;
  }
  file.close();
}

void afterTheFile() {
  writeLineCurvesAfter();
  closeHeadedCurves();
}

} // namespace

bool runModelStep() {
  TextFile file;
  beforeTheFile();
  if (!openOutput(file, RUNDATA.run.FOUTM, EarlyEnd::REMOVE)) {
    closeHeadedCurves();
    return false;
  }
  writeModel(file);
  afterTheFile();
  return !isModelReplaced() || copyManualOutput();
}

} // namespace lcp

#include "run/solve_driver.h"

#include "base/console.h"
#include "base/stop.h"
#include "base/text_file.h"
#include "modal/first_loop.h"
#include "modal/frequency_grid.h"
#include "modal/line_constants.h"
#include "modal/second_loop.h"
#include "output/mode_model_file.h"
#include "output/model_file.h"
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

bool openOutput(TextFile& file, const FileName& name) {
  if (file.open(name.whole())) return true;
  console::line();
  console::line(" ****** corvo.exe: ERROR *****");
  console::print("Cannot Open Output file ! ******{}", name.whole());
  return false;
}

// False when the model file cannot be opened.
bool runModel() {
  const ModelChoice& M = RUNDATA.model;
  if (M.MODFDP) unavailable("Frequency Dependent (Phase) Model");
  if (M.MODMFDTD) unavailable("MFDTD Model");
  TextFile file;
  if (!openOutput(file, RUNDATA.run.FOUTM)) return false;
  if (M.MODPI) {
    writePiModel(file);
  } else if (M.MODFDM) {
    writeModeModel(file);
  } else {
    writeBergeronModel(file);
  }
  file.close();
  return true;
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
  if (RUNDATA.run.DATAFMT == ROUTEMULTIPLE) unavailable("Multiple Y and Z Data");
  SOLVEDATA.first.IDEALT = isIdeallyTransposed();
  layGrid();
  firstFrequencyLoop();
  alignVectors();
  secondFrequencyLoop();
  if (RUNDATA.model.fitted()) formFitWeights();
  if (!runModel()) return;
  runComponent();
  runReport();
}

} // namespace lcp

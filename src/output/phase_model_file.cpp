#include "output/phase_model_file.h"

#include "fit/fit_driver.h"
#include "output/curve_files.h"
#include "output/fit_parameters.h"
#include "output/model_file.h"
#include "passivity/enforcement.h"
#include "passivity/passivity_check.h"
#include "store/rundata.h"

namespace lcp {

namespace {

void writeFirstLine(TextFile& file) {
  Record record("Fre-Phase ");
  record.integer(RUNDATA.line.NC, 2).column(14).text("0").column(30).text("1").column(41).text("1");
  file.line(record.general(RUNDATA.run.LINELEN, 16, 7).text(" /"));
}

} // namespace

void writePhaseModel(TextFile& file) {
  const PassivityOptions& P = RUNDATA.passivity;
  writeModelHead(file);
  writeFirstLine(file);
  writeFlagLines(file);
  FITDRIVE();
  if (P.PITERSET) enforcePassivity();
  writePhaseFitCurves();
  CHECKDELAYS();
  FITPARMS(file);
  if (P.PFLOSET && !P.PITERSET) PASSCHK();
}

} // namespace lcp

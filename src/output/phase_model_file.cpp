#include "output/phase_model_file.h"

#include "output/fit_parameters.h"
#include "output/model_file.h"
#include "store/rundata.h"

namespace lcp {

namespace {

void writeFirstLine(TextFile& file) {
  Record record(lineModel(ModelKind::Phase).fileHead);
  record.blanks(1);
  record.integer(RUNDATA.line.NC, 2).column(14).text("0").column(30).text("1").column(41).text("1");
  file.line(record.general(RUNDATA.run.LINELEN, 16, 7).text(" /"));
}

} // namespace

void writePhaseModel(TextFile& file) {
  writeModelHead(file);
  writeFirstLine(file);
  writeFlagLines(file);
  FITPARMS(file);
}

} // namespace lcp

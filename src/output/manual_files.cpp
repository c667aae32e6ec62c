#include "output/manual_files.h"

#include "base/console.h"
#include "base/stop.h"
#include "base/text_file.h"
#include "output/model_file.h"
#include "store/rundata.h"

#include <vector>

namespace lcp {

namespace {

void openModel(TextFile& file) {
  if (file.open(RUNDATA.run.FOUTM.whole(), EarlyEnd::REMOVE)) return;
  console::line();
  console::line(" ****** corvo.exe: ERROR *****");
  console::line(MANUALNOTOPENED);
  stop(1);
}

void writeHead(TextFile& file) {
  const ManualData& M = RUNDATA.manual;
  file.line("! ------ ORVEX Line Constants Program ------ ");
  file.line("! This file auto-generated.   Any manual changes");
  file.line("! made to this file will be lost when the Line");
  file.line("! Constants program is run.");
  file.line("! ----------------------------------------------- ");
  if (M.YZFMT != 1 || M.MANFMT != MANPAIR) return;
  file.line("!");
  file.line("! **NOTE: YZ input data given in total ohm/mho. Therefore");
  file.line("!         line length is ignored.");
  file.line("!");
}

void writeFirstLine(TextFile& file) {
  const BergeronOptions& B = RUNDATA.bergeron;
  const double SSFREQ = RUNDATA.line.SSFREQ;
  Record record(" ");
  record.integer(RUNDATA.line.NC, 2).column(5).text("0").column(12).text("1");
  record.column(23).text("1").column(28);
  for (const double value : {SSFREQ, SSFREQ, manualLength(), B.TAUMET, B.TAU0}) {
    record.general(value, 16, 7);
  }
  file.line(record.text(" /"));
}

void writeMode(TextFile& file, int k, const ManualMode& m, const RealMatrix& TR) {
  std::vector<double> values = {m.T, m.Zc, m.R, m.R};
  for (int j = 1; j <= RUNDATA.line.NC; ++j) values.push_back(TR(k, j));
  writeModeRecord(file, k, values, MANUALVALUES);
}

} // namespace

void writeManualModel(std::span<const ManualMode> modes, const RealMatrix& TR) {
  TextFile file;
  int k = 0;
  openModel(file);
  writeHead(file);
  writeFirstLine(file);
  for (const ManualMode& m : modes) writeMode(file, ++k, m, TR);
  file.close();
}

} // namespace lcp

#include "output/manual_line.h"

#include "base/console.h"
#include "base/constants.h"
#include "base/stop.h"
#include "kernels/matrix_kernels.h"
#include "modal/long_line.h"
#include "modal/manual_modes.h"
#include "modal/report_modes.h"
#include "modal/sequence.h"
#include "output/model_file.h"
#include "output/output_file.h"
#include "output/report_sections.h"
#include "store/rundata.h"

#include <algorithm>
#include <vector>

namespace lcp {

namespace {

constexpr int SHORTRULE = REPORTRULE - 1; // of the first lines of this report's heads

void checkModel() {
  if (RUNDATA.model.MODBERG) return;
  console::line("ERROR: The Manual Data Entry component can only be");
  console::line("used along with the Begeron model.");
  console::line("Frequency-Dependent models require the entry of");
  console::line("full conductor geometric information (i.e. tower/");
  console::line("cable cross-section and ground).");
  stop(1);
}

// --- model file

void openModel(TextFile& file) {
  if (file.open(RUNDATA.run.FOUTM.whole(), EarlyEnd::REMOVE)) return;
  console::line();
  console::line(" ****** corvo.exe: ERROR *****");
  console::line("Cannot Open corvo Output file ! ******");
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

void writeModel(const ManualMode* modes) {
  static RealMatrix TR;
  const int n = RUNDATA.line.NC;
  TextFile file;
  openModel(file);
  writeHead(file);
  writeFirstLine(file);
  REALPT(TR, MANUAL.TI, n);
  RCOLNORM(TR, TR, n);
  for (int k = 1; k <= n; ++k) writeMode(file, k, modes[k - 1], TR);
  file.close();
}

// --- report

void reportModes(TextFile& file) {
  static ModeReals TAUM;
  static ModeComplex Z0M;
  formModeTimes(MANUAL.YMOD, MANUAL.ZMOD, TAUM, Z0M);
  writeModalDomain(file, {MANUAL.TI, MANUAL.EIGM, MANUAL.ZMOD, MANUAL.YMOD, Z0M, TAUM}, 2);
}

// Without its file the report still tells the console what it has to.
void writeManualReport(CView Y, CView Z) {
  static LineMatrix YLC, ZLC;
  const int n = RUNDATA.line.NC;
  bool LLOK = true;
  TextFile file;
  openOutput(file, RUNDATA.run.FOUTR, EarlyEnd::KEEP);
  LONGCOR(Y, Z, RUNDATA.run.LINELEN, YLC, ZLC, n, LLOK);
  for (const CView m : {Z, Y, ZLC.view(), YLC.view()}) ZEROSM(m, n, RUNDATA.display.ZEROTOL);
  writeReportHead(file, SHORTRULE);
  writePhaseDomain(file, Y, Z, SHORTRULE);
  if (LLOK) writeCorrectedData(file, YLC, ZLC);
  reportModes(file);
  if (hasSequenceMatrices()) SEQMATS(file, Y, Z);
  if (n == 3 || n == 6) SEQRXB(file, Y, Z, YLC, ZLC, LLOK);
  file.close();
}

// An entered pair gives a mode its resistance by magnitude.
double signedResistance(int k, const ManualMode& m) {
  const bool pair = RUNDATA.manual.MANFMT == MANPAIR;
  return pair ? std::min(MANUAL.ZMOD(k, k).real(), m.R) : m.R;
}

void formModes(double f, bool writes, ManualMode* modes) {
  for (int k = 1; k <= RUNDATA.line.NC; ++k) {
    const ManualMode m = modes[k - 1] = manualMode(k);
    if (writes) noteNegativeResistance(k, f, signedResistance(k, m), TWOPI * f * m.L, m.R);
    storeManualMode(k, m, f);
  }
}

} // namespace

void MANLINE(CView Y, CView Z, double f, int mode) {
  const bool writes = mode == MANUALFILES;
  ManualMode modes[LDMAT];
  if (writes) checkModel();
  checkBases();
  checkManualData();
  formManualTransformation();
  formModes(writes ? RUNDATA.line.SSFREQ : f, writes, modes);
  formManualPhases(Y, Z);
  if (!writes) return;
  writeModel(modes); // nothing is refused from here on but what only the report can tell
  writeManualReport(Y, Z);
}

} // namespace lcp

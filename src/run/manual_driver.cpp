#include "run/manual_driver.h"

#include "base/console.h"
#include "base/constants.h"
#include "base/stop.h"
#include "base/text_file.h"
#include "kernels/matrix_kernels.h"
#include "modal/long_line.h"
#include "modal/manual_modes.h"
#include "modal/report_modes.h"
#include "modal/sequence.h"
#include "output/manual_files.h"
#include "output/model_file.h"
#include "output/output_file.h"
#include "output/pi_component.h"
#include "output/report_sections.h"
#include "store/rundata.h"

#include <algorithm>

namespace lcp {

namespace {

constexpr int SHORTRULE = REPORTRULE - 1; // for the first lines of this report's heads

void checkModel() {
  if (RUNDATA.model.row().entered) return;
  console::line("ERROR: The Manual Data Entry component can only be");
  console::line("used along with the Begeron model.");
  console::line("Frequency-Dependent models require the entry of");
  console::line("full conductor geometric information (i.e. tower/");
  console::line("cable cross-section and ground).");
  stop(1);
}

void reportModes(TextFile& file) {
  static ModeReals TAUM;
  static ModeComplex Z0M;
  writeModalHead(file, 2); // written before the times: a velocity may end the run there
  formModeTimes(MANUAL.YMOD, MANUAL.ZMOD, TAUM, Z0M);
  writeModalDomain(file, {MANUAL.TI, MANUAL.EIGM, MANUAL.ZMOD, MANUAL.YMOD, Z0M, TAUM});
}

// The real transformation with unit columns.
void realTransformation(RealMatrix& TR) {
  const int n = RUNDATA.line.NC;
  REALPT(TR, MANUAL.TI, n);
  RCOLNORM(TR, TR, n);
}

// Also runs if the file cannot be opened, since the report also prints to the console.
void writeManualReport(CView Y, CView Z) {
  static LineMatrix YLC, ZLC;
  const int n = RUNDATA.line.NC;
  bool LLOK = true;
  TextFile file;
  openOutput(file, RUNDATA.run.FOUTR, EarlyEnd::KEEP);
  writeReportHead(file, SHORTRULE);
  writePhaseHead(file, SHORTRULE);
  LONGCOR(Y, Z, RUNDATA.run.LINELEN, YLC, ZLC, n, LLOK);
  for (const CView m : {Z, Y, ZLC.view(), YLC.view()}) ZEROSM(m, n, RUNDATA.display.ZEROTOL);
  writePhaseDomain(file, Y, Z);
  if (LLOK) writeCorrectedData(file, YLC, ZLC);
  reportModes(file);
  if (hasSequenceMatrices()) SEQMATS(file, Y, Z);
  if (n == 3 || n == 6) SEQRXB(file, Y, Z, YLC, ZLC, LLOK);
  file.close();
}

// For an entered pair the resistance of a mode is a magnitude; this restores its sign.
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
  static RealMatrix TR;
  ManualMode modes[LDMAT];
  if (writes) checkModel();
  checkBases();
  checkManualData();
  formManualTransformation();
  formModes(writes ? RUNDATA.line.SSFREQ : f, writes, modes);
  formManualPhases(Y, Z);
  if (!writes) return;
  realTransformation(TR);
  // From here on, only the report itself can end the run.
  writeManualModel({modes, static_cast<std::size_t>(RUNDATA.line.NC)}, TR);
  writeManualReport(Y, Z);
}

void runManualLine() {
  static LineMatrix Y, Z;
  const double SSFREQ = RUNDATA.line.SSFREQ;
  MANLINE(Y, Z, SSFREQ, MANUALFILES);
  if (!RUNDATA.display.CREATEPI) return;
  MANLINE(Y, Z, SSFREQ, MANUALMATRICES);
  PISECT(Y, Z, RUNDATA.run.LINELEN);
}

} // namespace lcp

#include "run/report_step.h"

#include "kernels/matrix_kernels.h"
#include "modal/core_sequence.h"
#include "modal/line_constants.h"
#include "modal/long_line.h"
#include "modal/sequence.h"
#include "output/output_file.h"
#include "output/report_sections.h"
#include "run/methods.h"
#include "store/fitmodel.h"
#include "store/rundata.h"
#include "store/solvedata.h"

namespace lcp {

namespace {

void reportModes(TextFile& file) {
  FirstLoopStore& S = SOLVEDATA.first;
  SecondLoopStore& T = SOLVEDATA.second;
  runReportModes(); // before the head: a velocity may end the run
  writeModalHead(file, 3);
  writeModalDomain(file, {S.TI, S.EIG, T.ZM, T.YM, T.ZSURGE, T.TAUMS});
}

// Load-flow data of a cable system: those of its cores. Its own constants are restored afterwards.
void SEQCABLE(TextFile& file) {
  static LineMatrix YLC, ZLC;
  const FirstLoopStore& S = SOLVEDATA.first;
  bool LLOK = true;
  const Grounding saved = groundSheaths(RUNDATA.display.DISPFREQ);
  LONGCOR(S.YMAT, S.ZMAT, RUNDATA.run.LINELEN, YLC, ZLC, RUNDATA.line.NC, LLOK);
  SEQRXB(file, S.YMAT, S.ZMAT, YLC, ZLC, LLOK);
  restoreSheaths(saved, RUNDATA.display.DISPFREQ);
}

std::span<const double> first(std::span<const double> values, int n) {
  return values.first(static_cast<std::size_t>(n));
}

void writeReport(TextFile& file) {
  static LineMatrix YLC, ZLC;
  const FirstLoopStore& S = SOLVEDATA.first;
  const ModelChoice& M = RUNDATA.model;
  const int n = RUNDATA.line.NC;
  bool LLOK = true;
  LONGCOR(S.YMAT, S.ZMAT, RUNDATA.run.LINELEN, YLC, ZLC, n, LLOK);
  ZEROSM(ZLC, n, RUNDATA.display.ZEROTOL);
  ZEROSM(YLC, n, RUNDATA.display.ZEROTOL);
  writeReportHead(file);
  if (hasLoadFlowSection()) SEQRXB(file, S.YMAT, S.ZMAT, YLC, ZLC, LLOK);
  if (hasCoreSequences()) SEQCABLE(file);
  writePhaseHead(file);
  writePhaseDomain(file, S.YMAT, S.ZMAT);
  if (LLOK) writeCorrectedData(file, YLC, ZLC);
  if (M.row().reported) reportModes(file);
  if (hasSequenceMatrices()) SEQMATS(file, S.YMAT, S.ZMAT);
  if (M.atTwoFrequencies()) MINDELAY(file, first(SOLVEDATA.second.TAUMS.entries, n), true);
  if (M.fitsPhases()) MINDELAY(file, first(FITMODEL.TAU.entries, FITMODEL.NGROUP), false);
}

} // namespace

void runReport() {
  TextFile file;
  if (!openOutput(file, RUNDATA.run.FOUTR, EarlyEnd::KEEP)) return;
  constantsAt(RUNDATA.display.DISPFREQ);
  writeReport(file);
  file.close();
}

} // namespace lcp

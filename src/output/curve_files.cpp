#include "output/curve_files.h"

#include "output/curve_line.h"
#include "output/curve_mode.h"
#include "output/curve_phase.h"
#include "store/rundata.h"

namespace lcp {

namespace {

constexpr int FIRSTFITTED = 6; // grid step at the start of the fit range
constexpr int LONGTABLE = 100; // steps from which curves of a fit leave out those below it
constexpr int LONGHTABLE = 99; // ... of the propagation fit

bool wanted(bool model) { return model && RUNDATA.fit.WDETAIL; }

CurveSteps gridSteps() { return {FIRSTFITTED, SOLVEDATA.grid.NFUSE}; }

// A table of Y and Z has no steps below the fit range.
CurveSteps phaseSteps() {
  return {RUNDATA.run.DATAFMT == ROUTEMULTIPLE ? 1 : FIRSTFITTED, SOLVEDATA.grid.NFUSE};
}

CurveSteps fitSteps(int longTable) {
  const int NS = SOLVEDATA.grid.NFUSE;
  return {NS >= longTable ? FIRSTFITTED : 1, NS};
}

bool isEndCurve(CurveId id) { return id == CurveId::GDIS || id == CurveId::GDIO; }

} // namespace

void headCurves() {
  if (!wanted(RUNDATA.model.fitted())) return;
  for (int i = 0; i < static_cast<int>(CurveId::COUNT); ++i) {
    const auto id = static_cast<CurveId>(i);
    if (!isEndCurve(id)) headCurve(id);
  }
}

void writeEndCurves() {
  const CurveSteps steps = gridSteps();
  if (!wanted(RUNDATA.model.MODFDM || RUNDATA.model.MODFDP) || steps.empty()) return;
  headCurve(CurveId::GDIS);
  headCurve(CurveId::GDIO);
  writeSentVoltages(steps);
}

void writeModeCurves() {
  const CurveSteps steps = gridSteps();
  if (!wanted(RUNDATA.model.MODFDM) || steps.empty()) return;
  writeConstants(steps);
  writeEigenvalues(steps);
  writeModeFits(steps);
  writeFewConductors(steps);
}

void writePhaseLineCurves() {
  if (!wanted(RUNDATA.model.MODFDP)) return;
  writeConstants(phaseSteps());
  writeTransformation(phaseSteps());
  writeEigenvalues(phaseSteps());
}

void writePhaseFitCurves() {
  if (!wanted(RUNDATA.model.MODFDP)) return;
  writeAdmittanceFit(fitSteps(LONGTABLE));
  writeGroupFits(fitSteps(LONGHTABLE));
  writePropagationFit(fitSteps(LONGHTABLE));
}

void writeSeriesFitCurves(const CurveMatrix<Complex, MAXFREQ>& ZFIT) {
  if (!wanted(RUNDATA.model.MODMFDTD)) return;
  writeSeriesFit(ZFIT, fitSteps(LONGTABLE));
}

void writeSeriesLineCurves() {
  const CurveSteps steps = gridSteps();
  if (!wanted(RUNDATA.model.MODMFDTD) || steps.empty()) return;
  writeConstants(steps);
}

} // namespace lcp

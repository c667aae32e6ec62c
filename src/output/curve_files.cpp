#include "output/curve_files.h"

#include "modal/frequency_grid.h"
#include "output/curve_file.h"
#include "output/curve_rows.h"
#include "store/rundata.h"
#include "store/solvedata.h"

namespace lcp {

namespace {

constexpr int FIRSTFITTED = 6; // grid step at the start of the fit range
constexpr int LONGTABLE = 100; // steps from which curves of a fit leave out those below it
constexpr int LONGHTABLE = 99; // ... of the propagation fit

bool wanted(bool model) { return model && RUNDATA.fit.WDETAIL; }

CurveSteps gridSteps() { return {FIRSTFITTED, SOLVEDATA.grid.NFUSE}; }

// A table of Y and Z has no steps below the fit range.
CurveSteps phaseSteps() {
  return {RUNDATA.run.fromTable() ? 1 : FIRSTFITTED, SOLVEDATA.grid.NFUSE};
}

CurveSteps fitSteps(int longTable) {
  const int NS = SOLVEDATA.grid.NFUSE;
  return {NS >= longTable ? FIRSTFITTED : 1, NS};
}

bool isEndCurve(CurveId id) { return id == CurveId::GDIS || id == CurveId::GDIO; }

template <class Action> void forAllCurves(Action action) {
  for (int i = 0; i < static_cast<int>(CurveId::COUNT); ++i) action(static_cast<CurveId>(i));
}

} // namespace

void headCurves() {
  if (!wanted(RUNDATA.model.fitted())) return;
  forAllCurves([](CurveId id) {
    if (!isEndCurve(id)) headCurve(id);
  });
}

void closeHeadedCurves() { forAllCurves(closeCurve); }

void writeEndCurves(int k) {
  const int NFREQ = SOLVEDATA.grid.NFREQ;
  const int last = isConstantTransformStep(NFREQ) ? NFREQ - 1 : NFREQ;
  if (!wanted(RUNDATA.model.MODFDM() || RUNDATA.model.MODFDP())) return;
  if (k < FIRSTFITTED || k > last) return;
  if (k == FIRSTFITTED) openSentVoltages();
  writeSentVoltages(k);
  if (k == last) closeSentVoltages();
}

void writeModeCurves() {
  const CurveSteps steps = gridSteps();
  if (!wanted(RUNDATA.model.MODFDM()) || steps.empty()) return;
  writeConstants(steps);
  writeEigenvalues(steps);
  writeModeFits(steps);
  writeFewConductors(steps);
}

void writePhaseLineCurves() {
  if (!wanted(RUNDATA.model.MODFDP())) return;
  writeConstants(phaseSteps());
  writeTransformation(phaseSteps());
  writeEigenvalues(phaseSteps());
}

void writeAdmittanceFitCurves() {
  if (wanted(RUNDATA.model.MODFDP())) writeAdmittanceFit(fitSteps(LONGTABLE));
}

void writePropagationFitCurves() {
  if (!wanted(RUNDATA.model.MODFDP())) return;
  writeGroupFits(fitSteps(LONGHTABLE));
  writePropagationFit(fitSteps(LONGHTABLE));
}

void writeSeriesFitCurves() {
  if (!wanted(RUNDATA.model.MODMFDTD())) return;
  writeSeriesFit(fitSteps(LONGTABLE));
}

void writeSeriesLineCurves() {
  const CurveSteps steps = gridSteps();
  if (!wanted(RUNDATA.model.MODMFDTD()) || steps.empty()) return;
  writeConstants(steps);
}

} // namespace lcp

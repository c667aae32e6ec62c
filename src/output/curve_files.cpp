#include "output/curve_files.h"

#include "modal/frequency_grid.h"
#include "output/curve_file.h"
#include "output/curve_rows.h"
#include "store/rundata.h"
#include "store/solvedata.h"

namespace lcp {

namespace {

constexpr int FIRSTFITTED = 6; // grid step at the start of the fit range
constexpr int LONGTABLE = 100; // steps from which fit curves omit those below the fit range
constexpr int LONGHTABLE = 99; // ... for the propagation fit

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

// Writes each file of this moment once: a file can have several rows in the table.
void writeCurves(Moment moment, CurveSteps steps) {
  if (!RUNDATA.fit.WDETAIL || steps.empty()) return;
  CurveId before = CurveId::COUNT;
  for (const CurveRow& row : CURVETABLE) {
    if (row.written == moment && row.id != before) writeCurve(row.id, steps);
    before = row.id;
  }
}

} // namespace

void headCurves() {
  if (!wanted(RUNDATA.model.fitted())) return;
  for (int i = 0; i < static_cast<int>(CurveId::COUNT); ++i) {
    const auto id = static_cast<CurveId>(i);
    if (id != CurveId::GDIS && id != CurveId::GDIO) headCurve(id);
  }
}

void closeHeadedCurves() {
  for (const CurveRow& row : CURVETABLE) closeCurve(row.id);
}

void writeEndCurves(int k) {
  const int NFREQ = SOLVEDATA.grid.NFREQ;
  const int last = isConstantTransformStep(NFREQ) ? NFREQ - 1 : NFREQ;
  if (!wanted(RUNDATA.model.fitted())) return;
  if (k < FIRSTFITTED || k > last) return;
  if (k == FIRSTFITTED) openSentVoltages();
  writeSentVoltages(k);
  if (k == last) closeSentVoltages();
}

void writeLineCurvesBefore() {
  if (RUNDATA.model.fitsPhases()) writeCurves(Moment::Line, phaseSteps());
}

void writeAdmittanceFitCurves() { writeCurves(Moment::AdmittanceFit, fitSteps(LONGTABLE)); }

void writePropagationFitCurves() { writeCurves(Moment::PropagationFit, fitSteps(LONGHTABLE)); }

void writeSeriesFitCurves() { writeCurves(Moment::SeriesFit, fitSteps(LONGTABLE)); }

void writeLineCurvesAfter() {
  if (!RUNDATA.model.fitsModes() && !RUNDATA.model.fitsSeries()) return;
  writeCurves(Moment::Line, gridSteps());
  if (RUNDATA.model.fitsModes()) writeCurves(Moment::Modes, gridSteps());
}

} // namespace lcp

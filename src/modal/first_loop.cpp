// Step 1 (for Bergeron also step 2) is a full eigensolution, which fixes the order of the modes.
// Every other step starts from the solution of the previous step and follows each mode by
// Newton-Raphson. The solution accepted at step k is also stored at k + 1, as a start for the
// search at that step, if it needs one.
#include "modal/first_loop.h"

#include "base/constants.h"
#include "kernels/eigen_package.h"
#include "kernels/inversion.h"
#include "kernels/matrix_kernels.h"
#include "modal/frequency_grid.h"
#include "modal/line_constants.h"
#include "modal/modal_transform.h"
#include "modal/newton.h"
#include "modal/tracked_step.h"
#include "store/rundata.h"
#include "store/solvedata.h"

#include <algorithm>
#include <cmath>

namespace lcp {

namespace {

void storeConstants(int k) {
  const int n = RUNDATA.line.NC;
  SOLVEDATA.at.YSTORE.store(k, SOLVEDATA.first.YMAT, n);
  SOLVEDATA.at.ZSTORE.store(k, SOLVEDATA.first.ZMAT, n);
}

void idealStep(int k) {
  FirstLoopStore& S = SOLVEDATA.first;
  const int n = RUNDATA.line.NC;
  if (k == 1) idealTransformation();
  idealEigenvalues(S.EIG, S.PMAT, n);
  for (int i = 1; i <= n; ++i) SOLVEDATA.at.MEIG(k, i) = S.EIG[i];
  storeConstants(k);
}

// Decomposition without a starting solution.
void fullSolution(int k) {
  static LineMatrix copy;
  FirstLoopStore& S = SOLVEDATA.first;
  const int n = RUNDATA.line.NC;
  copyCorner(copy, S.PMAT, n);
  VALVC(S.EIG, S.TIINV, S.TI, copy, n);
  PIVNORM(S.TI, S.TIINV, S.PIVOT, n);
  S.PIVOT0 = S.PIVOT;
  INVCJD(S.TIINV, S.TI, n);
  S.PSCALE = 0;
  for (int i = 1; i <= n; ++i) S.PSCALE += std::abs(S.PMAT(i, i));
  S.PSCALE /= n;
  if (k > 1) {
    static LineMatrix stored;
    SOLVEDATA.at.MTI.load(1, stored, n);
    MTRACK(S.TI, S.TIINV, stored, S.EIG, n);
  }
}

void noteConstantScale() {
  FirstLoopStore& S = SOLVEDATA.first;
  S.PSCALECT = S.PSCALE;
  S.PIVOTC = S.PIVOT;
}

// Records the start of the constant-transformation step: the last step below its frequency. If the
// frequency is at or below the first step, scale and pivots of step 1 are used.
void noteConstantStart(int k) {
  FirstLoopStore& S = SOLVEDATA.first;
  const FrequencyGrid& G = SOLVEDATA.grid;
  if (!RUNDATA.fit.CONSTT || S.KCT != 0) return;
  if (G.FREQ[k] < RUNDATA.fit.FCT && k != G.NFREQ) return;
  S.KCT = std::max(k - 1, 1);
  noteConstantScale();
}

} // namespace

void beginStep(int k) {
  storeFrequency(k, gridFrequency(k));
  noteConstantStart(k);
}

namespace {

void takeStep(int k) {
  const ModelChoice& M = RUNDATA.model;
  FirstLoopStore& S = SOLVEDATA.first;
  beginStep(k);
  if (k > 1 && !M.atTwoFrequencies() && M.needsModes() && !S.IDEALT) {
    trackedStep(k);
    return;
  }
  constantsAtStep(k, SOLVEDATA.grid.FREQ[k], Place::AtTheStep);
  if (!M.needsModes()) {
    storeConstants(k);
  } else if (S.IDEALT) {
    idealStep(k);
  } else {
    fullSolution(k);
    acceptSolution(k);
    if (S.KCT == 1 && k == 1) noteConstantScale();
  }
}

} // namespace

bool isIdeallyTransposed() {
  const ConductorTable& C = RUNDATA.cond;
  if (RUNDATA.run.ISCABLE != OVERHEADLINE || RUNDATA.run.fromTable()) return false;
  for (int i = 1; i <= RUNDATA.line.NC; ++i) {
    if (C.CTRANSP[i] != 1 || C.CCIRC[i] > 1) return false;
  }
  return true;
}

void idealTransformation() {
  FirstLoopStore& S = SOLVEDATA.first;
  balancedTransformation(S.TI, S.TIINV, RUNDATA.line.NC);
}

void idealEigenvalues(ModeComplex& L, const LineMatrix& P, int n) {
  const Complex p = P(1, 1);
  const Complex q = n > 1 ? P(1, 2) : Complex();
  L[1] = p + static_cast<double>(n - 1) * q;
  for (int i = 2; i <= n; ++i) L[i] = p - q;
}

void beginFirstLoop() {
  SOLVEDATA.first.KCT = 0;
  SOLVEDATA.first.ISTATUS = true;
}

void firstFrequencyLoop() {
  beginFirstLoop();
  startTracking();
  for (int k = 1; k <= SOLVEDATA.grid.NFREQ; ++k) takeStep(k);
}

} // namespace lcp

// The way from one step to the next runs over the logarithm of the frequency, x from 0 to 1. A part
// of it that does not lead to a clear assignment is halved, one that does is doubled. At the least
// way the best assignment is taken: there two modes exchange their vectors within less than 1 % of
// the frequency, and each goes on as the one it was before.
#include "modal/subspace_walk.h"

#include "kernels/matrix_kernels.h"
#include "modal/frequency_grid.h"
#include "modal/line_constants.h"
#include "modal/subspace_modes.h"
#include "store/rundata.h"
#include "store/solvedata.h"

#include <algorithm>
#include <cmath>
#include <tuple>

namespace lcp {

namespace {

constexpr double LEASTWAY = 0.004; // decades of the frequency, 0.9 %
constexpr double SAMESIZE = 1e-6;  // elements that differ by less are equally large

ModeFrame frame; // of the frequency that was accepted last

void storeStep(int k, int n) {
  const FirstLoopStore& S = SOLVEDATA.first;
  FrequencyStore& A = SOLVEDATA.at;
  for (int i = 1; i <= n; ++i) A.MEIG(k, i) = S.EIG[i];
  A.MTI.store(k, S.TI, n);
  A.YSTORE.store(k, S.YMAT, n);
  A.ZSTORE.store(k, S.ZMAT, n);
}

void loadFrame(int k, int n) {
  SOLVEDATA.at.MTI.load(k, frame.X, n);
  invertFrame(frame, n);
}

bool fromTable() { return RUNDATA.run.DATAFMT == ROUTEMULTIPLE; }

int stepBefore(int k) {
  return isConstantTransformStep(k) && !fromTable() ? SOLVEDATA.first.KCT : k - 1;
}

void walkTo(int k, int from, int n) {
  const FrequencyGrid& G = SOLVEDATA.grid;
  const double a = G.LOGF[from], b = G.LOGF[k];
  double x = 0, part = 1;
  while (x < 1) {
    const double next = x + part;
    if (next < 1) {
      constantsAtStep(k, std::pow(10.0, a + next * (b - a)), Place::OnTheWay);
    } else {
      constantsAtStep(k, G.FREQ[k], Place::AtTheStep);
    }
    if (!followSubspaces(frame, n) && part * std::fabs(b - a) > LEASTWAY) {
      part /= 2;
      continue;
    }
    takeFrame(frame, n);
    x = next;
    part = std::min(2 * part, 1 - x);
  }
}

// The least that element (i,j) is against the largest of its vector from step `first` on.
double leastPart(int i, int j, int first) {
  double least = 1;
  for (int k = first; k <= SOLVEDATA.grid.NFREQ; ++k) {
    least = std::min(least, std::abs(SOLVEDATA.at.MTI(k, i, j)));
  }
  return least;
}

// A vector is turned by an element that is large at all steps, so that its angle never jumps; of
// Bergeron, whose file has the vectors of the last step, at that one.
void chooseTurningRows(int n) {
  const int first = RUNDATA.model.MODBERG() ? SOLVEDATA.grid.NFREQ : 1;
  for (int j = 1; j <= n; ++j) {
    double best = -1;
    for (int i = 1; i <= n; ++i) {
      const double part = leastPart(i, j, first);
      if (part < best + SAMESIZE) continue;
      best = part;
      SOLVEDATA.first.PIVOT0[j] = i;
    }
  }
}

int nearestStep(double f) {
  const FrequencyGrid& G = SOLVEDATA.grid;
  const auto away = [&](int k) { return std::fabs(G.LOGF[k] - std::log10(f)); };
  int best = G.NFREQ;
  for (int k = G.NFREQ - 1; k >= 1; --k) {
    if (away(k) < away(best)) best = k;
  }
  return best;
}

} // namespace

void subspaceStep(int k) {
  const int& n = RUNDATA.line.NC; // counted with the constants of the first step
  if (k == 1) {
    constantsAtStep(k, SOLVEDATA.grid.FREQ[k], Place::AtTheStep);
    startSubspaces(n);
    takeFrame(frame, n);
  } else {
    const int from = stepBefore(k);
    if (from != k - 1) loadFrame(from, n);
    walkTo(k, from, n);
  }
  storeStep(k, n);
  if (k == SOLVEDATA.grid.NFREQ) chooseTurningRows(n);
}

void subspaceReport(double f) {
  FirstLoopStore& S = SOLVEDATA.first;
  const int n = RUNDATA.line.NC;
  if (RUNDATA.model.MODMFDTD()) {
    startSubspaces(n);
    COLROT(S.TI, S.PIVOT, n);
    return;
  }
  if (S.IDEALT) {
    copyCorner(frame.X, S.TI, n);
    invertFrame(frame, n);
  } else {
    loadFrame(nearestStep(f), n);
  }
  // the modes stand at f whether or not their order is clear
  std::ignore = followSubspaces(frame, n);
  COLROT(S.TI, S.IDEALT ? S.PIVOT : S.PIVOT0, n);
}

} // namespace lcp

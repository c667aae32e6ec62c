// PI: only the steady-state frequency. Bergeron: the loss frequency, then the steady-state
// frequency. Fitted models: equal steps of log10(w), five below the fit range and NFINC + 1 in it,
// followed by the frequency of the constant transformation; for a table of Y and Z its rows. If the
// range ends below its start, the steps descend and the five extra steps are above it.
#include "modal/frequency_grid.h"

#include "base/console.h"
#include "base/constants.h"
#include "base/solve_error.h"
#include "modal/line_constants.h"
#include "store/rundata.h"
#include "store/solvedata.h"
#include "store/yz_table.h"

#include <algorithm>
#include <cmath>

namespace lcp {

namespace {

constexpr int BELOW = 5;       // steps below the fit range
constexpr int BEYOND = 7;      // grid steps in excess of the increments
constexpr int LEASTROWS = 2;   // of a table: the first delay is found from a slope
constexpr int SLOTSBEYOND = 8; // store slots: a solution is also stored at the following step

[[noreturn]] void refuseGrid(std::string_view why) {
  console::openStars();
  console::line(why);
  stopInStars();
}

double logOfRange(double f) {
  if (!(f > 0.0)) refuseGrid("Curve Fitting Frequencies Must be > 0!");
  return std::log10(TWOPI * f);
}

void layLogGrid() {
  const FitOptions& F = RUNDATA.fit;
  FrequencyGrid& G = SOLVEDATA.grid;
  if (F.NFINC > MAXFREQ - SLOTSBEYOND) {
    refuseGrid(fmt::format("Too Many Frequency Increments ({}), Maximum of {} Allowed!", F.NFINC,
                           MAXFREQ - SLOTSBEYOND));
  }
  if (!(F.FCT > 0.0)) refuseGrid("Frequency to Calculate Constant Transform Must be > 0!");
  const double a = logOfRange(F.FSTART), b = logOfRange(F.FEND);
  // The first delay is found from a slope over the grid, which would be 0 / 0 here.
  if (a == b && RUNDATA.model.needsModes()) {
    refuseGrid("Curve Fitting Start and End Frequency Must Differ!");
  }
  if (F.FEND < F.FSTART) {
    console::warning(fmt::format("Curve Fitting End Frequency, {:.4g} Hz, lies below the start, "
                                 "{:.4g} Hz: the grid of the fit falls",
                                 F.FEND, F.FSTART));
  }
  G.NFREQ = F.NFINC + BEYOND;
  G.DLOGW = (b - a) / F.NFINC;
  G.LOGW0 = a - BELOW * G.DLOGW;
}

// Rows may be in any order, but a fit with two rows at one frequency can fail.
void warnOfFallingRows() {
  const auto& F = YZTABLE.FTABLE;
  for (int k = 2; k <= RUNDATA.fit.NFINC; ++k) {
    if (F[k] > F[k - 1]) continue;
    console::warning(fmt::format("row {} of the Y and Z data, at {:.4g} Hz, does not lie above the "
                                 "row before, at {:.4g} Hz",
                                 k, F[k], F[k - 1]));
    return;
  }
}

// The description after the file name may contradict the table. A fit needs the logarithm of each
// frequency; the PI model takes the first row, whatever its frequency.
void checkTable() {
  const bool fitted = RUNDATA.model.fitted();
  const int NFINC = RUNDATA.fit.NFINC;
  // Elements missing in the table are 0, which gives no wave; only a model without modes can use
  // them.
  if (RUNDATA.line.NC > YZTABLE.order && RUNDATA.model.needsModes()) {
    refuseGrid(fmt::format("Number of Conductors ({}) is Above That of the Y and Z Data ({})!",
                           RUNDATA.line.NC, YZTABLE.order));
  }
  if (fitted && NFINC > YZTABLE.rows) {
    refuseGrid(fmt::format("Too Many Frequency Increments ({}), the Y and Z Data have {}!", NFINC,
                           YZTABLE.rows));
  }
  for (int k = 1; fitted && k <= NFINC; ++k) {
    if (YZTABLE.FTABLE[k] > 0.0) continue;
    refuseGrid(fmt::format("Frequency {} of the Y and Z Data Must be > 0!", k));
  }
  if (fitted) warnOfFallingRows();
}

// The PI model uses one row; it should be at the steady-state frequency.
void warnOfFirstRow() {
  if (YZTABLE.FTABLE[1] == RUNDATA.line.SSFREQ) return;
  console::warning(
      fmt::format("the PI model takes the first row of the Y and Z data, at {:.4g} Hz, for its "
                  "frequency of {:.4g} Hz",
                  YZTABLE.FTABLE[1], RUNDATA.line.SSFREQ));
}

void layTableGrid() {
  FrequencyGrid& G = SOLVEDATA.grid;
  const int NFINC = RUNDATA.fit.NFINC;
  if (NFINC < LEASTROWS && RUNDATA.model.needsModes()) {
    refuseGrid(fmt::format("Too Few Frequencies in the Y and Z Data ({}), a Delay Needs {}!", NFINC,
                           LEASTROWS));
  }
  const double a = logOfRange(RUNDATA.fit.FSTART), b = logOfRange(RUNDATA.fit.FEND);
  G.NFREQ = NFINC;
  G.DLOGW = (b - a) / std::max(NFINC - 1, 1);
  G.LOGW0 = a - BELOW * G.DLOGW;
}

void layFittedGrid() {
  const bool fromTable = RUNDATA.run.fromTable();
  if (!RUNDATA.model.fitsModes()) RUNDATA.fit.CONSTT = !fromTable;
  if (fromTable) {
    layTableGrid();
  } else {
    layLogGrid();
  }
}

} // namespace

void layGrid() {
  FrequencyGrid& G = SOLVEDATA.grid;
  const bool fromTable = RUNDATA.run.fromTable();
  if (fromTable) checkTable();
  switch (RUNDATA.model.row().grid) {
  case ModelGrid::SteadyState:
    if (fromTable) warnOfFirstRow();
    G.NFREQ = 1;
    break;
  case ModelGrid::LossAndSteadyState: G.NFREQ = 2; break;
  case ModelGrid::Band: layFittedGrid(); break;
  }
  mapCurves(SOLVEDATA, mostConductors());
}

double gridFrequency(int k) {
  const FrequencyGrid& G = SOLVEDATA.grid;
  if (RUNDATA.model.atOneFrequency()) return RUNDATA.line.SSFREQ;
  if (RUNDATA.model.atTwoFrequencies())
    return k == 1 ? RUNDATA.bergeron.FLOSS : RUNDATA.line.SSFREQ;
  if (RUNDATA.run.fromTable()) return YZTABLE.FTABLE[k];
  if (k == G.NFREQ) return RUNDATA.fit.FCT;
  return std::pow(10.0, (k - 1) * G.DLOGW + G.LOGW0) * INVTWOPI;
}

void storeFrequency(int k, double f) {
  FrequencyGrid& G = SOLVEDATA.grid;
  G.FREQ[k] = f;
  G.WFREQ[k] = TWOPI * f;
  G.LOGW[k] = std::log10(TWOPI * f);
  G.LOGF[k] = std::log10(f);
}

bool isConstantTransformStep(int k) {
  return RUNDATA.fit.CONSTT && RUNDATA.model.fitted() && k == SOLVEDATA.grid.NFREQ;
}

} // namespace lcp

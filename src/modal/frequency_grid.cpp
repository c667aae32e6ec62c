// PI: the steady-state frequency alone. Bergeron: the loss frequency, then the steady-state
// frequency. Fitted models: equal steps of log10(w), five below the fit range and NFINC + 1 over
// it, and behind them the frequency of the constant transformation; of a table of Y and Z its rows.
#include "modal/frequency_grid.h"

#include "base/console.h"
#include "base/constants.h"
#include "base/solve_error.h"
#include "base/stop.h"
#include "modal/line_constants.h"
#include "store/rundata.h"
#include "store/solvedata.h"
#include "store/yz_table.h"

#include <cmath>

namespace lcp {

namespace {

constexpr int BELOW = 5;       // steps below the fit range
constexpr int BEYOND = 7;      // steps that the grid has more than increments
constexpr int LEASTROWS = 2;   // of a table: a fit needs a range
constexpr int SLOTSBEYOND = 8; // slots: a solution is also stored at the step behind its own

[[noreturn]] void refuseGrid(std::string_view why) {
  console::openStars();
  console::line(why);
  stopInStars();
}

void layLogGrid() {
  const FitOptions& F = RUNDATA.fit;
  FrequencyGrid& G = SOLVEDATA.grid;
  if (F.NFINC + SLOTSBEYOND > MAXFREQ) {
    refuseGrid(fmt::format("Too Many Frequency Increments ({}), Maximum of {} Allowed!", F.NFINC,
                           MAXFREQ - SLOTSBEYOND));
  }
  if (!(F.FSTART > 0.0 && F.FEND > F.FSTART)) {
    refuseGrid("Curve Fitting Frequencies Must be > 0, and the End Above the Start!");
  }
  if (!(F.FCT > 0.0)) refuseGrid("Frequency to Calculate Constant Transform Must be > 0!");
  const double a = std::log10(TWOPI * F.FSTART);
  const double b = std::log10(TWOPI * F.FEND);
  G.NFREQ = F.NFINC + BEYOND;
  G.DLOGW = (b - a) / F.NFINC;
  G.LOGW0 = a - BELOW * G.DLOGW;
}

// What the description says behind the name of the file can be at odds with the table.
void checkTable() {
  const int NFINC = RUNDATA.fit.NFINC;
  if (RUNDATA.line.NC != YZTABLE.order) {
    refuseGrid(fmt::format("Number of Conductors ({}) is not That of the Y and Z Data ({})!",
                           RUNDATA.line.NC, YZTABLE.order));
  }
  if (NFINC > YZTABLE.rows) {
    refuseGrid(fmt::format("Too Many Frequency Increments ({}), the Y and Z Data have {}!", NFINC,
                           YZTABLE.rows));
  }
  for (int k = 1; k <= NFINC; ++k) {
    const double before = k > 1 ? YZTABLE.FTABLE[k - 1] : 0.0;
    if (YZTABLE.FTABLE[k] > before) continue;
    refuseGrid(
        fmt::format("Frequency {} of the Y and Z Data Must be > 0 and Above the One Before!", k));
  }
}

// One row serves the PI model, which is one of the steady-state frequency.
void warnOfFirstRow() {
  if (YZTABLE.FTABLE[1] == RUNDATA.line.SSFREQ) return;
  console::print("{}: The PI Model Takes the First of the Y and Z Data, at {:.4g} Hz",
                 console::WARNINGMARK, YZTABLE.FTABLE[1]);
  warn();
}

void layTableGrid() {
  FrequencyGrid& G = SOLVEDATA.grid;
  const int NFINC = RUNDATA.fit.NFINC;
  if (NFINC < LEASTROWS) {
    refuseGrid(fmt::format("Too Few Frequencies in the Y and Z Data ({}), a Fit Needs {}!", NFINC,
                           LEASTROWS));
  }
  const double a = std::log10(TWOPI * YZTABLE.FTABLE[1]);
  const double b = std::log10(TWOPI * YZTABLE.FTABLE[NFINC]);
  G.NFREQ = NFINC;
  G.DLOGW = (b - a) / (NFINC - 1);
  G.LOGW0 = a - BELOW * G.DLOGW;
}

void layFittedGrid() {
  const bool fromTable = RUNDATA.run.fromTable();
  if (!RUNDATA.model.MODFDM()) RUNDATA.fit.CONSTT = !fromTable;
  if (fromTable) {
    layTableGrid();
  } else {
    layLogGrid();
  }
}

} // namespace

void layGrid() {
  const ModelChoice& M = RUNDATA.model;
  FrequencyGrid& G = SOLVEDATA.grid;
  const bool fromTable = RUNDATA.run.fromTable();
  if (fromTable) checkTable();
  if (M.MODPI()) {
    if (fromTable) warnOfFirstRow();
    G.NFREQ = 1;
  } else if (M.MODBERG()) {
    G.NFREQ = 2;
  } else if (M.fitted()) {
    layFittedGrid();
  } else {
    console::line("***** CORVO.EXE - ERROR *****");
    console::print("Unknown Model Type: {}", static_cast<int>(M.MODEL));
    stop(1);
  }
  mapCurves(SOLVEDATA, mostConductors());
}

double gridFrequency(int k) {
  const FrequencyGrid& G = SOLVEDATA.grid;
  if (RUNDATA.model.MODPI()) return RUNDATA.line.SSFREQ;
  if (RUNDATA.model.MODBERG()) return k == 1 ? RUNDATA.bergeron.FLOSS : RUNDATA.line.SSFREQ;
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

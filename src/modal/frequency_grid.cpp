// PI: the steady-state frequency alone. Bergeron: the loss frequency, then the steady-state
// frequency. Fitted models: equal steps of log10(w), five below the fit range and NFINC + 1 over
// it, and behind them the frequency of the constant transformation.
#include "modal/frequency_grid.h"

#include "base/console.h"
#include "base/constants.h"
#include "base/stop.h"
#include "store/rundata.h"
#include "store/solvedata.h"

#include <cmath>

namespace lcp {

namespace {

constexpr int BELOW = 5;       // steps below the fit range
constexpr int BEYOND = 7;      // steps that the grid has more than increments
constexpr int SLOTSBEYOND = 8; // slots: a solution is also stored at the step behind its own

[[noreturn]] void refuseGrid(std::string_view why) {
  console::openStars();
  console::line(why);
  console::closeStars();
  console::line("QUENT Ending!");
  stop(1);
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

} // namespace

void layGrid() {
  const ModelChoice& M = RUNDATA.model;
  FrequencyGrid& G = SOLVEDATA.grid;
  if (M.MODPI) {
    G.NFREQ = 1;
  } else if (M.MODBERG) {
    G.NFREQ = 2;
  } else if (M.fitted()) {
    if (!M.MODFDM) RUNDATA.fit.CONSTT = true;
    layLogGrid();
  } else {
    console::line("***** CORVO.EXE - ERROR *****");
    console::print("Unknown Model Type: {}", M.MODEL);
    stop(1);
  }
}

double gridFrequency(int k) {
  const FrequencyGrid& G = SOLVEDATA.grid;
  if (RUNDATA.model.MODPI) return RUNDATA.line.SSFREQ;
  if (RUNDATA.model.MODBERG) return k == 1 ? RUNDATA.bergeron.FLOSS : RUNDATA.line.SSFREQ;
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

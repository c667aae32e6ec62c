// Fit of the propagation function over the usual grid: 106 steps from 0.25 Hz to 1 MHz.
//
// The arguments are the number of conductors and the length in km. Denormals are flushed to zero as
// in the program.
#include "../tests/support/console_capture.h"
#include "fit/phase_residues.h"
#include "fit/propagation_fit.h"
#include "modal/first_loop.h"
#include "modal/frequency_grid.h"
#include "modal/second_loop.h"
#include "run/lcpmain.h"
#include "store/rundata.h"
#include "store/solvedata.h"

#include <benchmark/benchmark.h>
#include <cmath>

using namespace lcp;
using lcp::test::consoleOf;

namespace {

// Untransposed phases above each other on the sides of towers 40 m apart.
void setLine(int n) {
  ConductorTable& C = RUNDATA.cond;
  C.NCOND = n;
  RUNDATA.line.NC = n;
  for (int i = 1; i <= n; ++i) {
    const int circuit = (i - 1) / 3;
    const int phase = (i - 1) % 3;
    C.CX[i] = 20.0 * circuit + 1.1 * phase + 0.3 * i;
    C.CY[i] = 18.0 + 6.5 * phase + 0.2 * circuit;
    C.CYAVG[i] = C.CY[i] - 5.0;
    C.CRAD[i] = 0.0153;
    C.CRDC[i] = 5.87e-5;
    C.CSHUNT[i] = 1e-11;
    C.CCIRC[i] = circuit + 1;
    C.CMAP[i] = MAPMAIN;
  }
}

void solveLine(int n, double length) {
  RUNDATA = {};
  RUNDATA.model.MODEL = ModelKind::Phase;
  RUNDATA.fit.WF1 = RUNDATA.fit.WF3 = 1;
  RUNDATA.fit.WF2 = 1000;
  RUNDATA.run.LINELEN = length;
  setLine(n);
  SOLVEDATA.first.IDEALT = false;
  layGrid();
  firstFrequencyLoop();
  alignVectors();
  for (int k = 1; k <= SOLVEDATA.grid.NFREQ; ++k) secondLoopStep(k);
  formFitWeights();
}

int polesOfAll() {
  int poles = 0;
  for (int g = 1; g <= FITMODEL.NGROUP; ++g) poles += FITMODEL.NH[g];
  return poles;
}

void propagation(benchmark::State& state) {
  flushDenormals();
  consoleOf([&] {
    const FitOptions& F = RUNDATA.fit;
    solveLine(static_cast<int>(state.range(0)), 1000.0 * static_cast<double>(state.range(1)));
    while (state.KeepRunning()) HFIT({F.ERRA, F.MAXPA, F.RPRATIO, 0});
  });
  state.counters["groups"] = FITMODEL.NGROUP;
  state.counters["poles"] = polesOfAll();
}
BENCHMARK(propagation)
    ->ArgsProduct({{3, 6}, {1, 100, 500}})
    ->Args({20, 100})
    ->Unit(benchmark::kMillisecond);

// Only the residues, over the poles of a finished fit.
void residues(benchmark::State& state) {
  flushDenormals();
  consoleOf([&] {
    const FitOptions& F = RUNDATA.fit;
    solveLine(static_cast<int>(state.range(0)), 1e5);
    HFIT({F.ERRA, F.MAXPA, F.RPRATIO, 0});
    while (state.KeepRunning())
      benchmark::DoNotOptimize(HPHASEFIT(0, nullptr, state.range(1) == 1));
  });
  state.counters["poles"] = polesOfAll();
}
BENCHMARK(residues)->ArgsProduct({{3, 6, 20}, {0, 1}})->Unit(benchmark::kMillisecond);

} // namespace

// Overhead line constants over the usual grid: 107 steps from 0.25 Hz to 1 MHz.
//
// The arguments are the numbers of conductors; the time printed is that of the whole loop.
// Denormals are flushed to zero as in the program.
#include "overhead/carson_integral.h"
#include "overhead/earth_return.h"
#include "overhead/overhead_zy.h"
#include "run/lcpmain.h"
#include "store/rundata.h"
#include "store/solvedata.h"

#include <benchmark/benchmark.h>
#include <cmath>

using namespace lcp;

namespace {

constexpr int STEPS = 107;

// A right-of-way of stranded, solid and tubular conductors in three layers. If bundled by fours,
// the first quarter of the entries are main conductors.
void setLine(int n, bool bundled) {
  RUNDATA = {};
  ConductorTable& C = RUNDATA.cond;
  C.NCOND = n;
  RUNDATA.line.NC = bundled ? n / 4 : n;
  for (int i = 1; i <= n; ++i) {
    const int main = bundled ? (i - 1) % (n / 4) + 1 : i;
    const int sub = bundled ? (i - 1) / (n / 4) : 0;
    const int tower = (main - 1) / 3;
    const int row = sub / 2;
    C.CX[i] = 8.0 * tower - 1.5 * n + 0.45 * (sub % 2);
    C.CY[i] = 18.0 + 9.0 * ((main - 1) % 3) + 0.45 * row;
    C.CYAVG[i] = C.CY[i] - 6.0;
    C.CRAD[i] = 0.0152;
    C.CRDC[i] = 6e-5;
    C.CSTRND[i] = i % 3 == 0;
    C.CTUBE[i] = i % 3 == 1;
    C.CTHICK[i] = 0.009;
    C.CSTRAD[i] = 0.0019;
    C.CNOUT[i] = 24;
    C.CNTOT[i] = 61;
    C.CCIRC[i] = 1;
    C.CMAP[i] = sub > 0 ? main : MAPMAIN;
  }
}

void solve() {
  FirstLoopStore& S = SOLVEDATA.first;
  S.ISTATUS = true;
  for (int k = 0; k < STEPS; ++k) {
    const double f = 0.25 * std::pow(4e6, k / (STEPS - 1.0));
    OHZY(f, S.YMAT, S.ZMAT, S.PMAT);
    S.ISTATUS = false;
  }
  benchmark::DoNotOptimize(S.PMAT(1, 1));
}

void closedForm(benchmark::State& state) {
  flushDenormals();
  setLine(static_cast<int>(state.range(0)), false);
  while (state.KeepRunning()) solve();
}
BENCHMARK(closedForm)->Arg(3)->Arg(12)->Arg(48)->Unit(benchmark::kMillisecond);

void transposed(benchmark::State& state) {
  flushDenormals();
  setLine(static_cast<int>(state.range(0)), false);
  RUNDATA.cond.CTRANSP.fill(1);
  while (state.KeepRunning()) solve();
}
BENCHMARK(transposed)->Arg(3)->Arg(48)->Unit(benchmark::kMillisecond);

void bundles(benchmark::State& state) {
  flushDenormals();
  setLine(static_cast<int>(state.range(0)), true);
  while (state.KeepRunning()) solve();
}
BENCHMARK(bundles)->Arg(12)->Arg(60)->Arg(192)->Unit(benchmark::kMillisecond);

void integral(benchmark::State& state) {
  flushDenormals();
  setLine(static_cast<int>(state.range(0)), true);
  RUNDATA.ground.EARTHF = EARTHINTEGRAL;
  while (state.KeepRunning()) solve();
}
BENCHMARK(integral)->Arg(12)->Arg(60)->Unit(benchmark::kMillisecond);

void exact(benchmark::State& state) {
  flushDenormals();
  setLine(static_cast<int>(state.range(0)), true);
  RUNDATA.numerics.IMPROVEDEARTH = true;
  while (state.KeepRunning()) solve();
}
BENCHMARK(exact)->Arg(12)->Arg(60)->Unit(benchmark::kMillisecond);

void integralVaryingSoil(benchmark::State& state) {
  flushDenormals();
  setLine(static_cast<int>(state.range(0)), true);
  RUNDATA.ground.EARTHF = EARTHINTEGRAL;
  RUNDATA.ground.GRTYPE = true;
  while (state.KeepRunning()) solve();
}
BENCHMARK(integralVaryingSoil)->Arg(12)->Unit(benchmark::kMillisecond);

void oneIntegral(benchmark::State& state) {
  const double r = std::pow(10.0, static_cast<double>(state.range(0)));
  while (state.KeepRunning()) benchmark::DoNotOptimize(CARSINT({r, r}, 0.8));
}
BENCHMARK(oneIntegral)->Arg(-4)->Arg(0)->Arg(2)->Unit(benchmark::kMicrosecond);

void logarithm(benchmark::State& state) {
  const Complex z(0.01 * static_cast<double>(state.range(0)), -0.02);
  while (state.KeepRunning()) benchmark::DoNotOptimize(LOG1P(z));
}
BENCHMARK(logarithm)->Arg(1)->Arg(20)->Arg(400)->Unit(benchmark::kNanosecond);

} // namespace

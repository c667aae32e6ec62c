// Earth return of cable systems over the usual grid: 107 steps from 0.1 Hz to 1 MHz.
//
// Six cables, in two groups of three or unevenly spaced so that no two pairs are equal; fourteen
// conductors of two towers, each with six phases and a ground wire at different heights. Denormals
// are flushed to zero as in the program.
#include "cable/cable_earth.h"
#include "cable/earth_integrals.h"
#include "cable/numbering.h"
#include "run/lcpmain.h"
#include "store/rundata.h"
#include "store/solvedata.h"

#include <benchmark/benchmark.h>
#include <cmath>

using namespace lcp;

namespace {

constexpr int STEPS = 107;
constexpr int EXACT = -1; // the exact integrals in place of a formula

void setCables(bool aerial, bool even) {
  RUNDATA = {};
  CableTable& T = RUNDATA.cable;
  T.NCABLE = 6;
  for (int c = 1; c <= 6; ++c) {
    Cable& C = T.CB[c];
    C.CBX = 0.25 * c + (c > 3 ? 1.5 : 0.0) + (even ? 0.0 : 0.013 * c * c);
    C.CBY = (aerial ? 9.0 : 1.0) + (even ? 0.0 : 0.05 * c);
    C.CBNLAY = 4;
    C.CBRAD = {0.0, 0.02, 0.035, 0.037, 0.042};
    C.CBOVHD = aerial;
  }
  numberConductors(CABLE.numbering);
}

void setTowers() {
  RUNDATA = {};
  CableTable& T = RUNDATA.cable;
  T.NCABLE = 14;
  for (int c = 1; c <= 14; ++c) {
    const int level = (c - 1) % 7 / 2; // three crossarms and the top
    Cable& C = T.CB[c];
    C.CBX = (c > 7 ? 60.0 : 0.0) + (level == 3 ? 0.0 : (c % 2 == 0 ? 6.0 : -6.0) + 0.5 * level);
    C.CBY = 22.0 + 9.0 * level - (c > 7 ? 1.7 : 0.0);
    C.CBNLAY = 1;
    C.CBRAD = {0.0, 0.015};
    C.CBOVHD = true;
  }
  numberConductors(CABLE.numbering);
}

void sweep() {
  for (int k = 0; k < STEPS; ++k) {
    const double w = 0.2 * 3.141592653589793 * std::pow(1e7, k / (STEPS - 1.0));
    SOLVEDATA.first.ISTATUS = k == 0;
    CBEARTH(w, CABLE.numbering, CABLE.D, CABLE.Q);
  }
  benchmark::DoNotOptimize(CABLE.D(1, 1));
}

void earthReturn(benchmark::State& state, bool aerial, bool even, int formula) {
  flushDenormals();
  setCables(aerial, even);
  RUNDATA.numerics.IMPROVEDEARTH = formula == EXACT;
  if (formula != EXACT) RUNDATA.ground.EARTHF = RUNDATA.ground.EARTHFU = formula;
  while (state.KeepRunning()) sweep();
}
BENCHMARK_CAPTURE(earthReturn, buriedClosed, false, false, 0)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(earthReturn, buriedIntegral, false, false, 2)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(earthReturn, buriedIntegralEven, false, true, 2)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(earthReturn, buriedExact, false, false, EXACT)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(earthReturn, aerialExact, true, false, EXACT)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(earthReturn, aerialIntegral, true, false, 2)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(earthReturn, aerialIntegralEven, true, true, 2)->Unit(benchmark::kMillisecond);

void towers(benchmark::State& state) {
  flushDenormals();
  setTowers();
  RUNDATA.ground.EARTHF = 2;
  while (state.KeepRunning()) sweep();
}
BENCHMARK(towers)->Unit(benchmark::kMillisecond);

void integrals(benchmark::State& state) {
  const double r = std::pow(10.0, static_cast<double>(state.range(0)));
  while (state.KeepRunning()) {
    benchmark::DoNotOptimize(KEXPINT({r, r}) + KEXPONE({r, r}) + CBMUT({r, r}, 0.8));
  }
}
BENCHMARK(integrals)->Arg(-4)->Arg(0)->Arg(2)->Unit(benchmark::kMicrosecond);

} // namespace

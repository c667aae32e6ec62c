// Y and Z of cable systems over the usual grid: 107 steps from 0.1 Hz to 1 MHz, closed forms.
#include "cable/cable_zy.h"
#include "store/rundata.h"
#include "store/solvedata.h"

#include <benchmark/benchmark.h>
#include <cmath>

using namespace lcp;

namespace {

constexpr int STEPS = 107;

// n single-core cables with sheath and jacket; the last one has only its core.
void setCables(int n) {
  RUNDATA = {};
  RUNDATA.run.ISCABLE = CABLESYSTEM;
  RUNDATA.cable.NCABLE = n;
  for (int c = 1; c <= n; ++c) {
    Cable& C = RUNDATA.cable.CB[c];
    C.CBX = 0.3 * c;
    C.CBY = 1.0;
    C.CBNLAY = c == n && n % 2 == 1 ? 2 : 4;
    C.CBSOLID = true;
    C.CBRAD = {0.0, 0.02, 0.035, 0.037, 0.042};
    C.CBRHO = {1.8e-8, 2.8e-8};
    C.CBMU.fill(1.0);
    C.CBEPS = {2.5, 2.3};
  }
}

void cableSystem(benchmark::State& state) {
  FirstLoopStore& S = SOLVEDATA.first;
  while (state.KeepRunning()) {
    setCables(static_cast<int>(state.range(0)));
    S.ISTATUS = true;
    for (int k = 0; k < STEPS; ++k) {
      CBZY(0.1 * std::pow(10.0, 7.0 * k / (STEPS - 1)), S.YMAT, S.ZMAT, S.PMAT);
      S.ISTATUS = false;
    }
  }
}

} // namespace

BENCHMARK(cableSystem)->Arg(3)->Arg(25)->Unit(benchmark::kMillisecond);

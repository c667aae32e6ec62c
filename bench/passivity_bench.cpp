// One main iteration of the passivity enforcement on an artificial model.
//
// 106 fit frequencies, a grid of 1000 points. The arguments are the number of conductors and the
// poles of the two groups.
#include "../tests/passivity/made_up_model.h"
#include "../tests/support/console_capture.h"
#include "passivity/enforcement.h"
#include "passivity/residue_model.h"
#include "passivity/violation_scan.h"

#include <benchmark/benchmark.h>
#include <cmath>

using namespace lcp;

namespace {

void setUp(const benchmark::State& state) {
  test::setMadeUpModel(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)),
                       static_cast<int>(state.range(2)), 0.8);
}

void BM_mainIteration(benchmark::State& state) {
  PassivityOptions P;
  P.PFLO = 0.5;
  P.PFHI = 1e6;
  P.NPFINC = 1000;
  P.PMAXIT = 1;
  P.PEIGTOL = 1e-9;
  static FreqCurve WFREQ;
  const int NS = 106;
  for (int k = 1; k <= NS; ++k) WFREQ[k] = SINGLETWOPI * 0.25 * std::pow(4e6, (k - 1.0) / (NS - 1));
  for ([[maybe_unused]] auto step : state) {
    setUp(state);
    const std::string printed =
        test::consoleOf([&] { benchmark::DoNotOptimize(PASSENF(P, WFREQ, NS)); });
    benchmark::DoNotOptimize(printed.data());
  }
  state.counters["variables"] = ENFORCE.NVAR;
  state.counters["constraints"] = ENFORCE.NCON;
  state.counters["constraint frequencies"] = ENFORCE.NCFREQ;
}
BENCHMARK(BM_mainIteration)
    ->Args({3, 40, 20})
    ->Args({3, 60, 0})
    ->Args({6, 30, 15})
    ->Args({12, 30, 30})
    ->Unit(benchmark::kMillisecond);

void BM_scan(benchmark::State& state) {
  setUp(state);
  PASSGRID(0.5, 1e6, 1000, GRIDLOGARITHMIC, ENFORCE.EGRID);
  for ([[maybe_unused]] auto step : state) PASSVIOL(1e-9, Residues::Base);
}
BENCHMARK(BM_scan)
    ->Args({3, 40, 20})
    ->Args({6, 30, 15})
    ->Args({24, 30, 15})
    ->Unit(benchmark::kMillisecond);

} // namespace

// The passivity check at 100 points of an artificial model; the argument is the number of
// conductors.
#include "../tests/passivity/made_up_model.h"
#include "../tests/support/console_capture.h"
#include "passivity/passivity_check.h"
#include "store/rundata.h"

#include <benchmark/benchmark.h>

using namespace lcp;

namespace {

void BM_check(benchmark::State& state) {
  test::setMadeUpModel(static_cast<int>(state.range(0)), 20, 10, 0.8);
  RUNDATA.passivity.PFLO = 0.5;
  RUNDATA.passivity.PFHI = 1e6;
  RUNDATA.passivity.NPFINC = 100;
  for ([[maybe_unused]] auto step : state) {
    const std::string printed = test::consoleOf(PASSCHK);
    benchmark::DoNotOptimize(printed.data());
  }
}
BENCHMARK(BM_check)->Arg(3)->Arg(12)->Arg(48)->Unit(benchmark::kMillisecond);

} // namespace

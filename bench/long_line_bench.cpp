// Cost of the long-line correction, for the line of the previous call and for a new line each time.
//
// Model, report and length steps repeat it for the same line.
#include "../tests/support/line_matrices.h"
#include "modal/long_line.h"

#include <benchmark/benchmark.h>

using namespace lcp;
using namespace lcp::test;

namespace {

void correction(benchmark::State& state, double change) {
  static LineMatrix Y, Z, YLC, ZLC;
  const int n = static_cast<int>(state.range(0));
  lineProduct(Z, 50.0, towers(n));
  for (int i = 1; i <= n; ++i) Y(i, i) = Complex(1e-9, 1.0);
  bool shown = false;
  for ([[maybe_unused]] auto step : state) {
    Y(1, 1) *= change;
    LONGCOR(Y, Z, 0.1, YLC, ZLC, n, shown);
    benchmark::DoNotOptimize(YLC.elements[0]);
  }
}

void BM_sameLine(benchmark::State& state) { correction(state, 1.0); }
void BM_otherLine(benchmark::State& state) { correction(state, 1.0 + 1e-9); }
BENCHMARK(BM_sameLine)->Arg(3)->Arg(12)->Arg(48)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_otherLine)->Arg(3)->Arg(12)->Arg(48)->Unit(benchmark::kMicrosecond);

} // namespace

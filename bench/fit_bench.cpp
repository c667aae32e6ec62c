// Cost of a vector fitting pass on a typical curve: surge impedance of a ground mode, 0.5 Hz to 1
// MHz.
#include "base/constants.h"
#include "fit/vector_fit.h"

#include <benchmark/benchmark.h>
#include <cmath>

namespace {

using namespace lcp;

FreqCurve WFREQ;
FreqCurve WFIT;
ComplexCurve F;
FunctionFit fit;
FitErrors errors;

FitSamples surgeImpedance(int NS) {
  for (int k = 1; k <= NS; ++k) {
    const double w = TWOPI * LOGPOLE(k, 0.5, 1.0e6, NS);
    const Complex z(0.05 + 1.0e-4 * std::sqrt(w), w * 1.0e-6 + 1.0e-4 * std::sqrt(w));
    WFREQ[k] = w;
    WFIT[k] = 1.0;
    F[k] = std::sqrt(z / Complex(3.0e-10, w * 1.0e-11));
  }
  return {NS, 1, WFREQ, &F, WFIT, FLIPUNSTABLE, WITHCONSTANT};
}

// Every pass starts from the same poles: those of the third pass, the last one in a fit.
PoleTable settledPoles(const FitSamples& Q, int N) {
  PoleTable P;
  startingPoles(P, N, Q.WFREQ[1], Q.WFREQ[Q.NS]);
  RELOCATE(2, Q, N, P);
  return P;
}

void fitPass(benchmark::State& state) {
  const int N = static_cast<int>(state.range(0));
  const FitSamples Q = surgeImpedance(static_cast<int>(state.range(1)));
  const PoleTable start = settledPoles(Q, N);
  while (state.KeepRunning()) {
    PoleTable P = start;
    VFIT(Q, N, P, &fit, errors);
    benchmark::DoNotOptimize(errors);
  }
}
BENCHMARK(fitPass)->Args({5, 106})->Args({20, 106})->Args({40, 206})->Args({100, 1020});

void relocation(benchmark::State& state) {
  const int N = static_cast<int>(state.range(0));
  const FitSamples Q = surgeImpedance(static_cast<int>(state.range(1)));
  const PoleTable start = settledPoles(Q, N);
  while (state.KeepRunning()) {
    PoleTable P = start;
    RELOCATE(1, Q, N, P);
    benchmark::DoNotOptimize(P);
  }
}
BENCHMARK(relocation)->Args({20, 106});

void residues(benchmark::State& state) {
  const int N = static_cast<int>(state.range(0));
  const FitSamples Q = surgeImpedance(static_cast<int>(state.range(1)));
  const PoleTable P = settledPoles(Q, N);
  while (state.KeepRunning()) {
    PoleTable given = P;
    VFITPASSES(0, Q, N, given, &fit, errors);
    benchmark::DoNotOptimize(errors);
  }
}
BENCHMARK(residues)->Args({20, 106});

} // namespace

// Cost of the modal kernels: products, inversion, Newton steps, decomposition, and tracking over a
// grid.
#include "../tests/support/line_matrices.h"
#include "kernels/bordered_system.h"
#include "kernels/eigen_package.h"
#include "modal/newton.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <numeric>

using namespace lcp;
using namespace lcp::test;

namespace {

// Following all modes from matrix to matrix, as a solve does from frequency to frequency.
struct Walk {
  LineMatrix A, TI, TIINV;
  ModeComplex EIG;
  ModeInts PIVOT;
  double s = 0.0;
};

// Decomposition of A.
void start(Walk& W, int n) {
  static LineMatrix copy;
  copy = W.A;
  W.s = 0.0;
  for (int i = 1; i <= n; ++i) W.s += std::abs(W.A(i, i)) / n;
  VALVC(W.EIG, W.TIINV, W.TI, copy, n);
  PIVNORM(W.TI, W.TIINV, W.PIVOT, n);
}

// Modes of the next A from those of the last one.
bool step(Walk& W, int n) {
  static LineMatrix copy, XGUESS;
  ModeComplex LGUESS;
  copy = W.A;
  XGUESS = W.TI;
  for (int i = 1; i <= n; ++i) LGUESS[i] = W.EIG[i] / W.s;
  const bool ok = NREIG(W.EIG, W.TI, LGUESS, XGUESS, copy, W.s, W.PIVOT, n);
  PIVNORM(W.TI, W.TIINV, W.PIVOT, n);
  return ok;
}

// A walk over 107 steps of a frequency grid from 0.25 Hz to 1 MHz.
constexpr int STEPS = 107;
double gridFrequency(int k) { return 0.25 * std::pow(4e6, (k - 1.0) / (STEPS - 1.0)); }

void Product(benchmark::State& state) {
  static LineMatrix A, B, C;
  const int n = static_cast<int>(state.range(0));
  std::mt19937 random(1);
  fillRandom(A, n, n, random);
  fillRandom(B, n, n, random);
  while (state.KeepRunning()) {
    CMATMUL(C, A, B, n);
    benchmark::DoNotOptimize(C.elements[0]);
  }
}
BENCHMARK(Product)->Arg(3)->Arg(12)->Arg(48);

void Inversion(benchmark::State& state) {
  static LineMatrix A, R;
  const int n = static_cast<int>(state.range(0));
  std::mt19937 random(1);
  fillRandom(A, n, n, random);
  while (state.KeepRunning()) benchmark::DoNotOptimize(INVCHECKED(R, A, n));
}
BENCHMARK(Inversion)->Arg(3)->Arg(12)->Arg(48);

void Elimination(benchmark::State& state) {
  static LineMatrix A;
  ModeComplex x, b;
  const int n = static_cast<int>(state.range(0));
  std::mt19937 random(1);
  fillRandom(A, n, n, random);
  b.fill(1.0);
  while (state.KeepRunning()) benchmark::DoNotOptimize(SOLVEJD(x.data(), A, b.data(), n));
}
BENCHMARK(Elimination)->Arg(4)->Arg(13)->Arg(49);

// One Newton step for as many modes as there are lanes, and the preparation done once per
// frequency.
void BorderedStep(benchmark::State& state) {
  static LineMatrix A;
  static BorderedMatrix M;
  static BorderedSystems S;
  static LaneVectors d;
  bool solved[LANES];
  const int n = static_cast<int>(state.range(0));
  std::mt19937 random(1);
  fillRandom(A, n, n, random);
  reduce(M, A, n);
  for (int c = 0; c < LANES; ++c) {
    S.used[c] = true;
    S.p[c] = 1;
    S.l.set(c, 0.3);
    for (int i = 1; i <= n + 1; ++i) {
      S.x[i].set(c, 1.0);
      S.r[i].set(c, 0.1);
    }
  }
  while (state.KeepRunning()) {
    SOLVEBORDERED(d, solved, M, S);
    benchmark::DoNotOptimize(d);
  }
}
BENCHMARK(BorderedStep)->Arg(3)->Arg(12)->Arg(48);

void Reduction(benchmark::State& state) {
  static LineMatrix A;
  static BorderedMatrix M;
  const int n = static_cast<int>(state.range(0));
  std::mt19937 random(1);
  fillRandom(A, n, n, random);
  while (state.KeepRunning()) reduce(M, A, n);
}
BENCHMARK(Reduction)->Arg(3)->Arg(12)->Arg(48);

void Decomposition(benchmark::State& state) {
  static Walk W;
  const int n = static_cast<int>(state.range(0));
  lineProduct(W.A, 0.25, towers(n));
  while (state.KeepRunning()) start(W, n);
}
BENCHMARK(Decomposition)->Arg(3)->Arg(12)->Arg(48)->Unit(benchmark::kMillisecond);

// All steps of a grid, including the inversion of the vectors for accepting a step.
void Tracking(benchmark::State& state) {
  static Walk W;
  static LineMatrix A[STEPS];
  const int n = static_cast<int>(state.range(0));
  for (int k = 1; k <= STEPS; ++k) lineProduct(A[k - 1], gridFrequency(k), towers(n));
  double updates = 0.0, failures = 0.0;
  while (state.KeepRunning()) {
    W.A = A[0];
    start(W, n);
    for (int k = 2; k <= STEPS; ++k) {
      W.A = A[k - 1];
      const bool ok = step(W, n);
      INVCJD(W.TIINV, W.TI, n);
      const auto spent = SOLVEDATA.first.NRITER.entries.begin();
      updates += std::accumulate(spent, spent + n, 0);
      failures += !ok || *std::max_element(spent, spent + n) >= 10;
    }
  }
  const auto runs = static_cast<double>(state.iterations());
  state.counters["updates per mode"] = updates / runs / (STEPS - 1) / n;
  state.counters["steps to be searched"] = failures / runs;
}
BENCHMARK(Tracking)->Arg(3)->Arg(12)->Arg(48)->Unit(benchmark::kMillisecond);

} // namespace

// Two unit vectors at an angle t give rows of length at least 1 / sin t in the inverse of the
// transformation. The length of the inverse therefore shows quickly whether all modes are distinct.
#include "modal/lost_modes.h"

#include "base/console.h"
#include "store/rundata.h"
#include "store/solvedata.h"

#include <algorithm>
#include <cmath>

namespace lcp {

namespace {

constexpr double ONEMODE = 1e-7; // relative, above Newton's tolerance: closer modes count as one
constexpr double LARGESTAPART = 1e7;   // squared norm of an inverse below which no modes coincide
constexpr double MOSTCONDITION = 1e10; // above it results have hardly any correct digit

bool areOne(int a, int b, const ModeComplex& EIG, CConstView TI, int n) {
  if (std::abs(EIG[a] - EIG[b]) > ONEMODE * std::abs(EIG[a])) return false;
  Complex dot;
  for (int i = 1; i <= n; ++i) dot += std::conj(TI(i, a)) * TI(i, b);
  return std::norm(dot) > 1 - ONEMODE;
}

struct Pair {
  int a = 0, b = 0; // 0 for none
};

Pair doubledModes(const ModeComplex& EIG, CConstView TI, int n) {
  for (int a = 1; a <= n; ++a) {
    for (int b = a + 1; b <= n; ++b) {
      if (areOne(a, b, EIG, TI, n)) return {a, b};
    }
  }
  return {};
}

double rowSquare(CConstView A, int i, int n) {
  double sum = 0;
  for (int j = 1; j <= n; ++j) sum += std::norm(A(i, j));
  return sum;
}

// The two modes with the longest rows in the inverse.
Pair nearestModes(CConstView TIINV, int n) {
  Pair longest{1, 2};
  const auto length = [&](int i) { return rowSquare(TIINV, i, n); };
  if (length(2) > length(1)) std::swap(longest.a, longest.b);
  for (int i = 3; i <= n; ++i) {
    if (length(i) > length(longest.b)) longest.b = i;
    if (length(longest.b) > length(longest.a)) std::swap(longest.a, longest.b);
  }
  return {std::min(longest.a, longest.b), std::max(longest.a, longest.b)};
}

} // namespace

void LostModes::look(int k) {
  const FirstLoopStore& S = SOLVEDATA.first;
  const int n = RUNDATA.line.NC;
  if (S.IDEALT || RUNDATA.model.atOneFrequency()) return;
  double square = 0;
  for (int i = 1; i <= n; ++i) square += rowSquare(S.TIINV, i, n);
  if (!(square > LARGESTAPART)) return;
  const double cond = std::sqrt(n * square); // the matrix of vectors has norm sqrt(n)
  Pair modes = doubledModes(S.EIG, S.TI, n);
  const bool one = modes.a > 0;
  if (!one && cond <= MOSTCONDITION) return;
  if (!one) modes = nearestModes(S.TIINV, n);
  if (++steps > 1) return;
  first = k;
  a = modes.a;
  b = modes.b;
  doubled = one;
  condition = cond;
}

void LostModes::warn() const {
  if (steps == 0) return;
  const char* how = doubled ? "are one" : "can hardly be told apart";
  const std::string more = steps > 1 ? fmt::format(" and at {} more frequencies", steps - 1) : "";
  console::warning(fmt::format("modes {} and {} {} at {:.4g} Hz{}, the condition of the "
                               "transformation is {:.2g}; Improved Modes : 1 follows them apart",
                               a, b, how, SOLVEDATA.grid.FREQ[first], more, condition));
}

} // namespace lcp

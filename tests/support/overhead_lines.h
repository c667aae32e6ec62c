// Overhead lines for tests: a deterministic generator of conductor tables in solve order, a solve
// at one frequency, and dense matrix arithmetic of its own to check results against.
#pragma once

#include "base/matrix.h"
#include "store/solvedata.h"

#include <complex>
#include <cstdint>
#include <vector>

namespace lcp::test {

using Wide = std::complex<long double>;
using Dense = std::vector<std::vector<Wide>>; // first index 0

// Numbers without an operating system or library behind them: the same lines everywhere.
class LineNumbers {
public:
  explicit LineNumbers(std::uint64_t seed) : state(seed * 2654435761U + 1) {}
  double between(double lo, double hi) { return lo + (hi - lo) * fraction(); }
  int upTo(int lo, int hi) { return lo + static_cast<int>(fraction() * (hi - lo + 1)); }
  bool chance(double p) { return fraction() < p; }

private:
  double fraction();
  std::uint64_t state;
};

// What a generated line may hold.
struct LineWish {
  int mostKept = 48;      // equivalent conductors
  int mostBundle = 4;     // sub-conductors of a bundle
  int mostEliminated = 3; // ground wires
  bool transposition = true;
};

// Fills the run store with a line: kept conductors first, then bundle members, then eliminated
// ground wires; soil, shapes and shunt conductances differ from line to line.
void makeLine(std::uint64_t seed, const LineWish& wish = {});

// One conductor in air: at x and average height y, with radius and resistance, kept.
void setConductor(int i, double x, double y, double radius, double resistance);

struct LineResult {
  int n = 0;
  Dense Y, Z, P;
  double length = 0;
};

// OHZY at the frequency f, with ISTATUS set unless told otherwise.
LineResult solveLine(double f, bool first = true);

Dense inverse(Dense A); // partial pivoting
Dense product(const Dense& A, const Dense& B);
double distance(const Dense& A, const Dense& B); // largest difference over the largest element

} // namespace lcp::test

// Overhead lines for tests: a generator of conductor tables in solve order, and a solve at one
// frequency.
#pragma once

#include "store/rundata.h"
#include "support/dense_functions.h"

#include <cstdint>
#include <string>

namespace lcp::test {

// Pseudo-random numbers that do not depend on system or library: the same lines everywhere.
class LineNumbers {
public:
  explicit LineNumbers(std::uint64_t seed) : state(seed * 2654435761U + 1) {}
  double between(double lo, double hi) { return lo + (hi - lo) * fraction(); }
  int upTo(int lo, int hi) { return lo + static_cast<int>(fraction() * (hi - lo + 1)); }
  bool chance(double p) { return fraction() < p; }

private:
  double fraction() {
    state = state * 6364136223846793005U + 1442695040888963407U;
    return static_cast<double>(state >> 11) * 0x1p-53;
  }
  std::uint64_t state;
};

// Limits of a generated line.
struct LineWish {
  int mostKept = 48;      // equivalent conductors
  int mostBundle = 4;     // sub-conductors of a bundle
  int mostEliminated = 3; // ground wires
};

// Fills the run store with a line: kept conductors first, then bundle members, then eliminated
// ground wires; soil, shapes and shunt conductances differ from line to line.
void makeLine(std::uint64_t seed, const LineWish& wish = {});

// One conductor in air: at x and average height y, with radius and resistance, kept.
void setConductor(int i, double x, double y, double radius, double resistance);

struct LineResult {
  int n = 0;
  Dense Y, Z, P;
};

// What a routine of line constants gives at the frequency f.
using LineConstants = void (*)(double f, CView YMAT, CView ZMAT, CView PMAT);
LineResult solveWith(LineConstants routine, double f, bool first = true);
// Returns which of these properties a result at f lacks: reciprocity, a positive real part of Z and
// of Y over j w, P = Yn Zn.
std::string unsound(const LineResult& r, double f, bool passive = true);
// OHZY at frequency f; ISTATUS is set unless `first` is false.
LineResult solveLine(double f, bool first = true);

} // namespace lcp::test

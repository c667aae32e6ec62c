// Y and Z over the whole grid as smooth curves, with isolated jumps removed.
//
// They are computed at the grid points and half way between them, and interpolated elsewhere. Where
// Z jumps, e.g. because a sum of the earth return ended early, the interpolation of its neighbours
// is used.
//
// Place 2 k - 1 is point k of the grid, place 2 k is half way to the next one, in the logarithm.
#pragma once

namespace lcp {

struct JumpsOfZ {
  int count = 0;      // number of places at which Z jumps
  double f = 0;       // frequency of the largest jump, Hz
  double largest = 0; // its size relative to the largest self impedance
};

// Call after the loops over a grid of even steps: fills the curves.
[[nodiscard]] JumpsOfZ laySmoothConstants();

// Sets YMAT and ZMAT of SOLVEDATA.first at a place, which may be fractional; w in rad/s.
void smoothConstantsAt(double place, double w);

} // namespace lcp

// Y and Z over the whole grid as smooth curves: computed at its points and half way between them,
// found by interpolation anywhere else. A frequency at which Z jumps, as where a sum of the earth
// return ends early, counts as its neighbours have it.
//
// Place 2 k - 1 is point k of the grid, place 2 k half way to the next one, in the logarithm.
#pragma once

namespace lcp {

struct JumpsOfZ {
  int count = 0;      // of the places at which Z jumps
  double f = 0;       // where most, Hz
  double largest = 0; // by so much of its largest self impedance
};

// Behind the loops over the grid, which is one of even steps: fills the curves.
[[nodiscard]] JumpsOfZ laySmoothConstants();

// Fills YMAT and ZMAT of SOLVEDATA.first at a place, also one between whole ones; w in rad/s.
void smoothConstantsAt(double place, double w);

} // namespace lcp

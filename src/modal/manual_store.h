// Store of the modes of a line whose data were entered by hand.
#pragma once

#include "store/solvedata.h"

namespace lcp {

struct ManualModes {
  LineMatrix TI;    // transformation, unit columns
  LineMatrix TIINV; // its inverse
  LineMatrix YMOD;  // modal admittance, S/m; a full matrix for an entered pair
  LineMatrix ZMOD;  // modal impedance, ohm/m
  ModeComplex EIGM; // squared propagation constants of an entered pair, 1/m^2; otherwise 0
};

inline ManualModes MANUAL;

} // namespace lcp

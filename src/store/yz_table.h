// The table of Y and Z over frequency, read from a file in the place of a geometry.
//
// A store of its own: it is large, and a run from geometry touches none of it.
#pragma once

#include "base/big_store.h"
#include "base/matrix.h"
#include "store/capacities.h"

namespace lcp {

struct YZTable {
  int rows;                             // frequencies that were read
  int order;                            // order of the matrices
  Curve<double, MAXFREQ> FTABLE;        // frequency of row k, Hz
  CurveMatrix<Complex, MAXFREQ> YTABLE; // shunt admittance, S/m
  CurveMatrix<Complex, MAXFREQ> ZTABLE; // series impedance, ohm/m
};

// Mapped before anything of a file that includes this is initialised.
inline YZTable& YZTABLE = bigStore<YZTable>();

} // namespace lcp

// The table of Y and Z over frequency that a run reads instead of a geometry.
//
// Kept apart from the run store because it is large and a run from geometry touches none of it.
#pragma once

#include "base/big_store.h"
#include "base/matrix.h"
#include "store/capacities.h"

namespace lcp {

struct YZTable {
  int rows;                             // number of frequencies
  int order;                            // order of the matrices
  Curve<double, MAXFREQ> FTABLE;        // frequency of row k, Hz
  CurveMatrix<Complex, MAXFREQ> YTABLE; // shunt admittance, S/m
  CurveMatrix<Complex, MAXFREQ> ZTABLE; // series impedance, ohm/m
};

// Mapped before any variable of an including file is initialised.
inline YZTable& YZTABLE = bigStore<YZTable>();

} // namespace lcp

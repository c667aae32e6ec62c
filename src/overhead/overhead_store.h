// Working store of the overhead line constants: matrices over all physical conductors.
//
// Mapped once for the whole run; only the corner in use takes memory. The first call of a solve
// fills what depends only on geometry, and later calls rely on it.
#pragma once

#include "base/big_store.h"
#include "base/matrix.h"
#include "overhead/transposition.h"
#include "store/capacities.h"

namespace lcp {

using ConductorMatrix = MappedSquare<Complex>;

struct OverheadStore {
  // Valid for one solve
  ConductorMatrix PGEO;       // logarithms of the geometry, all physical conductors, dimensionless
  ConductorMatrix PRED;       // potential coefficients, reduced and averaged, dimensionless
  ConductorMatrix PINV;       // normalised Y, dimensionless; Im of the diagonal is of one frequency
  MappedSquare<double> DINV;  //          1 / (distance to the image)^2, 1/m^2
  TranspositionGroups groups; // circuits for the averaging

  // Valid for one call
  ConductorMatrix ZWORK;  // normalised Z of all physical conductors, then reduced, dimensionless
  ConductorMatrix PZWORK; // product PINV ZWORK, dimensionless
  Complex DEPTH;          // complex depth p of the ground, m
  Complex DEPTHINV;       // 1 / p, 1/m
};

// Mapped before any variable of an including file is initialised.
inline OverheadStore& OVERHEAD = bigStore<OverheadStore>();

} // namespace lcp

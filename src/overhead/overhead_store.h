// Working store of the overhead line constants: the matrices over all physical conductors.
//
// One mapping for the whole run, of which only the corner in use takes memory. The first call of a
// solve fills what depends on geometry alone, and the later calls rely on it.
#pragma once

#include "base/big_store.h"
#include "base/matrix.h"
#include "overhead/transposition.h"
#include "store/capacities.h"

namespace lcp {

using ConductorMatrix = MappedSquare<Complex>;

struct OverheadStore {
  // Of one solve
  ConductorMatrix PGEO;       // logarithms of the geometry, all physical conductors, 1
  ConductorMatrix PRED;       // potential coefficients, reduced and averaged, 1
  ConductorMatrix PINV;       // normalised Y; Im of the diagonal belongs to one frequency, 1
  MappedSquare<double> DINV;  //          1 / (distance to the image)^2, 1/m^2
  TranspositionGroups groups; // circuits as the averaging sees them

  // Of one call
  ConductorMatrix ZWORK;  // normalised Z, all physical conductors, then reduced, 1
  ConductorMatrix PZWORK; // product PINV ZWORK, 1
  Complex DEPTH;          // complex depth p of the ground, m
  Complex DEPTHINV;       // 1 / p, 1/m
};

// Mapped before anything of a file that includes this is initialised.
inline OverheadStore& OVERHEAD = bigStore<OverheadStore>();

} // namespace lcp

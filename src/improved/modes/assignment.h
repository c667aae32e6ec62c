// Optimal assignment of rows to columns by the Hungarian method.
#pragma once

#include "store/solvedata.h"

namespace lcp {

// Assigns each row i of the n by n cost matrix a column COLUMN(i) of its own such that the sum of
// cost(i, COLUMN(i)) is minimal. All costs must be finite; n up to 49.
void ASSIGN(ModeInts& COLUMN, const RealMatrix& cost, int n);

} // namespace lcp

// Optimal assignment of rows to columns.
#pragma once

#include "store/solvedata.h"

namespace lcp {

// Gives each row i of the n by n table of costs, all finite, a column COLUMN(i) of its own so that
// the sum of cost(i, COLUMN(i)) is least (Hungarian method). n up to 49.
void ASSIGN(ModeInts& COLUMN, const RealMatrix& cost, int n);

} // namespace lcp

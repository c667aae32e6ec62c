// Minimum-norm least squares by QR with column pivoting.
#pragma once

#include "base/matrix.h"
#include "store/capacities.h"

namespace lcp {

using ColumnInts = Table<int, MAXCOLUMNS>;

// Minimises |A x - b| for each of nrhs columns b of B. A is m by n and overwritten. B holds b in
// rows 1 to m on entry and x in rows 1 to n on exit, so its leading dimension is at least max(m,
// n). A column j with JPVT[j] = 0 takes part in the pivoting, any other is moved to the front; on
// exit JPVT holds the order of the columns. The rank is the order of the largest leading triangle
// with a condition number below 1 / rcond. m up to LSROWS, n up to MAXCOLUMNS, nrhs up to LSRHS.
void DGELSY(RView A, RView B, int m, int n, int nrhs, ColumnInts& JPVT, double rcond);

// The same with all columns free, as in most fits.
void DGELSY(RView A, RView B, int m, int n, int nrhs, double rcond);

} // namespace lcp

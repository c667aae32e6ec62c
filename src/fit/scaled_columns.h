// Scaling of the columns of least-squares problems.
#pragma once

#include "fit/fit_store.h"

namespace lcp {

using ColumnReals = Table<double, MAXCOLUMNS>;

// Divides each of the n columns of A, of m rows, by its Euclidean length, which is stored in SCALE;
// a zero column is unchanged and has SCALE 1.
void scaleColumns(RView A, int m, int n, ColumnReals& SCALE);

// Converts the nrhs solutions for the scaled columns to those for the original ones.
void unscaleRows(RView X, int n, int nrhs, const ColumnReals& SCALE);

} // namespace lcp

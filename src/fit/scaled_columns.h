// Scaling of the columns of least-squares problems.
#pragma once

#include "fit/fit_store.h"

namespace lcp {

using ColumnReals = Table<double, MAXCOLUMNS>;

// Divides each of the n columns of A, of m rows, by its Euclidean length, which goes to SCALE; a
// column of zeros keeps its values and counts as of length 1.
void scaleColumns(RView A, int m, int n, ColumnReals& SCALE);

// Turns the nrhs solutions for the scaled columns into those for the columns as they were.
void unscaleRows(RView X, int n, int nrhs, const ColumnReals& SCALE);

} // namespace lcp

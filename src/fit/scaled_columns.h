// The store that the least-squares problems of the fits share, and the scaling of their columns.
#pragma once

#include "base/big_store.h"
#include "kernels/least_squares.h"

namespace lcp {

using ColumnReals = Table<double, MAXCOLUMNS>;

// Matrix and right-hand sides of the least-squares problem at hand. One store for all fits: a
// routine that calls another fit finds it overwritten.
struct LeastSquaresStore {
  double A[static_cast<std::size_t>(LSROWS) * LSCOLS];
  double B[static_cast<std::size_t>(LSROWS) * LSRHS];

  RView matrix() { return {A, LSROWS}; }
  RView rightSides() { return {B, LSROWS}; }
  RView rightSides(int rows) { return {B, rows}; } // side by side: many of them stay near
};

inline LeastSquaresStore& LSQ = bigStore<LeastSquaresStore>();

// Divides each of the n columns of A, of m rows, by its Euclidean length, which goes to SCALE; a
// column of zeros keeps its values and counts as of length 1.
void scaleColumns(RView A, int m, int n, ColumnReals& SCALE);

// Turns the nrhs solutions for the scaled columns into those for the columns as they were.
void unscaleRows(RView X, int n, int nrhs, const ColumnReals& SCALE);

} // namespace lcp

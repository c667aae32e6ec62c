// Dense least squares, eigenvalues and singular values of the fits: LAPACK behind views and fixed
// work stores. Nothing is allocated; failure codes are not looked at, results are taken as they
// come.
#pragma once

#include "base/big_store.h"
#include "base/matrix.h"
#include "store/capacities.h"

namespace lcp {

using ColumnInts = Table<int, MAXCOLUMNS>;
using ColumnReals = Table<double, MAXCOLUMNS>;

// Matrix and right-hand sides of the least-squares problem at hand. One store for all fits: a
// routine that calls another fit finds it overwritten.
struct LeastSquaresStore {
  double A[static_cast<std::size_t>(LSROWS) * LSCOLS];
  double B[static_cast<std::size_t>(LSROWS) * LSRHS];

  RView matrix() { return {A, LSROWS}; }
  RView rightSides() { return {B, LSROWS}; }
};

inline LeastSquaresStore& LSQ = bigStore<LeastSquaresStore>();

// Minimum-norm least squares by QR with column pivoting: min |A x - b| for each of nrhs columns b
// of B. A is m by n and overwritten. B holds b in rows 1 to m on entry and x in rows 1 to n on
// exit, so its leading dimension is max(m, n) or more. A column j with JPVT[j] = 0 takes part in
// the pivoting, one with another value is moved to the front; JPVT holds the order of the columns
// on exit. The rank, which is returned, is the order of the largest leading triangle with a
// condition number below 1 / rcond. m up to LSROWS, n up to MAXCOLUMNS, nrhs up to LSRHS.
int DGELSY(RView A, RView B, int m, int n, int nrhs, ColumnInts& JPVT, double rcond);

// The same with all columns free, as most fits want it.
int DGELSY(RView A, RView B, int m, int n, int nrhs, double rcond);

// Eigenvalues WR + j WI of the real matrix A of order n up to NPMAX, in the order in which LAPACK
// finds them: the two of a pair side by side, exact conjugates, positive imaginary part first.
// A is overwritten. A matrix with an element that is no number has eigenvalues that are none. The
// status is 0 when all were found.
int DGEEV(RView A, int n, Table<double, NPMAX>& WR, Table<double, NPMAX>& WI);

// Singular values S, falling, of A (m by n, overwritten) and its singular vectors: U is m by
// min(m, n), VT is min(m, n) by n. m up to LSROWS, n up to MAXCOLUMNS.
void DGESVD(RView A, int m, int n, Table<double, LSROWS>& S, RView U, RView VT);

// Divides each of the n columns of A, of m rows, by its Euclidean length, which goes to SCALE; a
// column of zeros keeps its values and counts as of length 1.
void scaleColumns(RView A, int m, int n, ColumnReals& SCALE);

// Turns the nrhs solutions for the scaled columns into those for the columns as they were.
void unscaleRows(RView X, int n, int nrhs, const ColumnReals& SCALE);

} // namespace lcp

// Rational fit of all elements of a matrix of the phases over common poles:
//
//   F(i,j)(s) = D(i,j) + s E(i,j) + sum over m of R(i,j)[m] / (s - P[m])
//
// Complex poles come in conjugate pairs side by side, with conjugate residues at the same places;
// no pole has a positive real part.
#pragma once

#include "fit/partial_fractions.h"
#include "fit/scaled_columns.h"
#include "store/fitmodel.h"
#include "store/solvedata.h"

namespace lcp {

// What is fitted, how, and where the model goes.
struct MatrixFit {
  const CurveMatrix<Complex, MAXFREQ>& F; // samples at the fitted grid points
  int PASSES;                             // of the vector fit, for each number of poles
  PoleTable& P;                           // rad/s
  ResidueMatrix& R;
  RealMatrix& D;
  RealMatrix* E;                      // nullptr for a model without this term
  CurveMatrix<Complex, MAXFREQ>& FIT; // the model at the fitted grid points
  const RealMatrix* DC;               // values at s = 0 that it is made to meet, or nullptr
  ColumnInts* JPVT;                   // column pivots from fit to fit; nullptr for free columns
};

struct MatrixFitResult {
  int N;      // poles
  double ERR; // largest deviation over the largest magnitude, both over all elements
};

// Fits with one pole, two poles and so on, until the error is TARGET or less or NMAX poles are
// reached, at most NPMAX. The error is NaN when a value of the model is.
MatrixFitResult FITMATRIX(const MatrixFit& Q, int NMAX, double TARGET);

// Its steps, for fits that grow in another way. The trace of F, which the poles are found from.
const ComplexCurve& formTrace(const MatrixFit& Q);

// Residues of all elements, D and E over the N poles P.
void fitResidues(const MatrixFit& Q, int N);

// Forms FIT; the largest deviation over the largest magnitude.
double modelError(const MatrixFit& Q, int N);

// Sum over N poles of the real part of R / p: what D exceeds the value at s = 0 by.
double ratioSum(const PoleTable& P, const PoleTable& R, int N);

} // namespace lcp

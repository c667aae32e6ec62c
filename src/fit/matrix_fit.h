// Rational fit of all elements of a phase matrix with common poles:
//
//   F(i,j)(s) = D(i,j) + s E(i,j) + sum over m of R(i,j)[m] / (s - P[m])
//
// Complex poles are stored as adjacent conjugate pairs, with conjugate residues at the same
// positions; no pole has a positive real part.
#pragma once

#include "fit/partial_fractions.h"
#include "fit/scaled_columns.h"
#include "store/fitmodel.h"
#include "store/solvedata.h"

namespace lcp {

// The problem, its options, and the place of the model.
struct MatrixFit {
  const CurveMatrix<Complex, MAXFREQ>& F; // samples at the fitted grid points
  int PASSES;                             // of the vector fit, for each number of poles
  PoleTable& P;                           // rad/s
  ResidueMatrix& R;
  RealMatrix& D;
  RealMatrix* E;                      // nullptr for a model without this term
  CurveMatrix<Complex, MAXFREQ>& FIT; // the model at the fitted grid points
  const RealMatrix* DC;               // prescribed values at s = 0, or nullptr
  ColumnInts* JPVT;                   // column pivots kept between fits; nullptr for free columns
};

struct MatrixFitResult {
  int N;      // poles
  double ERR; // largest deviation relative to the largest magnitude, both over all elements
};

// Fits with an increasing number of poles until the error is at most TARGET or NMAX poles (at most
// NPMAX) are reached. The error is NaN if a value of the model is.
MatrixFitResult FITMATRIX(const MatrixFit& Q, int NMAX, double TARGET);

// The steps of the fit, for fits that grow in another way. formTrace: the trace of F, from which
// the poles are found.
const ComplexCurve& formTrace(const MatrixFit& Q);

// Residues of all elements, D and E over the N poles P.
void fitResidues(const MatrixFit& Q, int N);

// Computes FIT and returns the largest deviation relative to the largest magnitude.
double modelError(const MatrixFit& Q, int N);

// Sum over N poles of Re(R / p): D minus the value at s = 0.
double ratioSum(const PoleTable& P, const PoleTable& R, int N);

} // namespace lcp

// Stores shared by the fits: least squares, models of modes and of the series impedance, fitted
// curves.
//
// The phase model is in store/fitmodel.
#pragma once

#include "base/big_store.h"
#include "kernels/least_squares.h"
#include "store/fitmodel.h"
#include "store/solvedata.h"

namespace lcp {

// All stores are mapped before any variable of an including file is initialised.

// Matrix and right-hand sides of the current least-squares problem. All fits share one store: a
// routine that calls another fit finds it overwritten.
struct LeastSquaresStore {
  double A[static_cast<std::size_t>(LSROWS) * LSCOLS];
  double B[static_cast<std::size_t>(LSROWS) * LSRHS];

  RView matrix() { return {A, LSROWS}; }
  RView rightSides() { return {B, LSROWS}; }
  RView rightSides(int rows) { return {B, rows}; } // compact: more of them stay cached
};

inline LeastSquaresStore& LSQ = bigStore<LeastSquaresStore>();

// The fitted functions at the grid points as the fits left them, for the detail curve files. A
// passivity enforcement changes the residues but not these; only the improved enforcement updates
// them.
struct FittedCurves {
  // The fit whose error is printed, S: before the model is made symmetric, and without the extra
  // pole of a DC correction.
  CurveMatrix<Complex, MAXFREQ> YC;
  CurveMatrix<Complex, MAXFREQ> H; // after order reduction and DC correction

  // By delay group: the function its poles were fitted to, with the delay removed, and its fit.
  CurveVector<Complex, NGMAX, MAXFREQ> GROUP;
  CurveVector<Complex, NGMAX, MAXFREQ> GROUPFIT;
};

inline FittedCurves& FITTED = bigStore<FittedCurves>();

// F(s) = D + sum over m of R[m] / (s - P[m])
struct RationalFit {
  int N;       // poles
  double D;    // constant term
  PoleTable P; // poles, rad/s
  PoleTable R; // residues
  double ERR;  // largest deviation relative to the largest magnitude of the function
};

// The frequency-dependent mode model.
struct ModeModel {
  Table<RationalFit, LDMAT> Z;       // surge impedance of mode i, ohm
  Table<RationalFit, LDMAT> A;       // propagation function of mode i with its delay removed
  SquareStore<RationalFit, LDMAT> T; // element (i, r) of the transformation: mode i, row r
};

inline ModeModel& MODEMODEL = bigStore<ModeModel>();

// Z(i,j)(s) = ZFD(i,j) + s ZFE(i,j) + sum over m of ZFR(i,j)[m] / (s - ZFP[m])
struct SeriesModel {
  int NPZ;           // poles
  PoleTable ZFP;     // rad/s
  ResidueMatrix ZFR; // ohm rad/(s m)
  RealMatrix ZFD;    // constant term, ohm/m
  RealMatrix ZFE;    // term proportional to s, H/m

  CurveMatrix<Complex, MAXFREQ> ZFIT; // the model at the fitted grid points, ohm/m
};

inline SeriesModel& SERIESMODEL = bigStore<SeriesModel>();

} // namespace lcp

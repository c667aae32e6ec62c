// Partial fractions F(s) = D + s E + sum over m of R_m / (s - p_m) with real and complex poles.
//
// Classes of poles, the real basis for the least-squares problem of the residues, and evaluation.
// Poles are in rad/s. Complex poles come in adjacent pairs, which are assumed to be conjugate; the
// second of a pair is never read.
#pragma once

#include "base/matrix.h"
#include "store/fitmodel.h"

namespace lcp {

using PoleClasses = Table<int, MAXPOLES>;
using ComplexCurve = Curve<Complex, MAXFREQ>;

constexpr int REALPOLE = 0;
constexpr int PAIRFIRST = 1;
constexpr int PAIRSECOND = 2;

// Class of each of the N poles P. A pole is real if its imaginary part is exactly 0.
void classifyPoles(const PoleTable& P, int N, PoleClasses& CINDEX);

// 1 / (s - p)
inline Complex poleTerm(Complex s, Complex p) {
  const double x = s.real() - p.real();
  const double y = s.imag() - p.imag();
  const double d = x * x + y * y;
  return {x / d, -y / d};
}

// Value at s of basis function m, whose coefficient is a real unknown of the fit:
//   real pole       1 / (s - p)
//   first of pair   1 / (s - p) + 1 / (s - p*)     coefficient Re R of the first pole p
//   second of pair  j / (s - p) - j / (s - p*)     coefficient Im R of the first pole p
Complex basisFunction(const PoleTable& P, const PoleClasses& CINDEX, int m, Complex s);

// The same on the frequency axis, s = j WFREQ[k], k = 1 to NS.
void basisCurve(const PoleTable& P, const PoleClasses& CINDEX, int m, const FreqCurve& WFREQ,
                int NS, ComplexCurve& phi);

// Positions of the real and imaginary parts of a curve in a column of a real least-squares problem.
struct ColumnRows {
  double* re;
  double* im;
};

// The usual positions: real parts in rows 1 to NS, imaginary parts below them.
inline ColumnRows columnRows(RView A, int c, int NS) { return {A.column(c), A.column(c) + NS}; }

// Columns for a curve, for a constant D and for a term s E, times the weight of each frequency.
void curveColumn(const ComplexCurve& F, const FreqCurve& WFIT, int NS, ColumnRows to);
void constantColumn(const FreqCurve& WFIT, int NS, ColumnRows to);
void proportionalColumn(const FreqCurve& WFREQ, const FreqCurve& WFIT, int NS, ColumnRows to);

// Residue of pole m from the coefficients of the basis functions in column c of X. The residues of
// a pair are exact conjugates.
Complex residueOf(const PoleClasses& CINDEX, int m, RConstView X, int c);
void residuesOf(const PoleClasses& CINDEX, int N, RConstView X, int c, PoleTable& R);

// Value of the partial fractions at s, with terms added in the order of the poles.
Complex partialFractions(const PoleTable& P, const PoleTable& R, int N, double D, double E,
                         Complex s);

// The same on the frequency axis.
void partialFractionCurve(const PoleTable& P, const PoleTable& R, int N, double D, double E,
                          const FreqCurve& WFREQ, int NS, ComplexCurve& F);

// Its steps, for models with many elements over the same poles: u = 1 / (j w - p), once per pole,
// and F = F + R u, once per element.
void poleCurve(Complex p, const FreqCurve& WFREQ, int NS, ComplexCurve& u);
void addTimes(Complex R, const ComplexCurve& u, int NS, ComplexCurve& F);

// All poles at once.
using PoleCurves = Table<ComplexCurve, MAXPOLES>;
void poleCurves(const PoleTable& P, int N, const FreqCurve& WFREQ, int NS, PoleCurves& u);
void partialFractionCurve(const PoleCurves& u, const PoleTable& R, int N, double D, double E,
                          const FreqCurve& WFREQ, int NS, ComplexCurve& F);

} // namespace lcp

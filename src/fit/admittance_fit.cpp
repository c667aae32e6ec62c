// The poles come from vector fitting of the trace of Yc, the residues of all elements from one
// linear least squares problem over these poles:
//
//   Yc(r,c) = D(r,c) + sum over m of R(r,c)[m] / (s - p_m)
//
// With the DC constraint the unknowns are those of Yc(r,c) - Ydc(r,c), each basis function has its
// value at s = 0 taken off, and D follows from Ydc = D - sum R / p.
#include "fit/admittance_fit.h"

#include "base/console.h"
#include "base/constants.h"
#include "base/number_forms.h"
#include "base/record.h"
#include "fit/dc_values.h"
#include "fit/fit_console.h"
#include "fit/fitted_curves.h"
#include "fit/lapack.h"
#include "fit/partial_fractions.h"
#include "fit/vector_fit.h"
#include "store/fitmodel.h"
#include "store/rundata.h"
#include "store/solvedata.h"

#include <algorithm>
#include <cmath>

namespace lcp {

namespace {

constexpr int PASSES = 3;             // of the vector fit, for each number of poles
constexpr double RCOND = 1e-14;       // of the residue problem
constexpr double TINY = 1e-20;        // magnitudes up to this are not divided by
constexpr double SMALLERROR = 0.0005; // per cent; smaller ones are printed in scientific form

ComplexCurve trace, phi;
PoleClasses CINDEX;
RealMatrix YDC, HDC;

void formTrace(int NS) {
  for (int k = 1; k <= NS; ++k) {
    trace[k] = 0.0;
    for (int i = 1; i <= RUNDATA.line.NC; ++i) trace[k] += SOLVEDATA.second.YCST(k, i, i);
  }
}

// Poles of the trace, from N starting poles.
void findPoles(int NS, int N) {
  const FrequencyGrid& G = SOLVEDATA.grid;
  const FitSamples samples{NS, 1, G.WFREQ, &trace, G.WFIT, FLIPUNSTABLE, WITHCONSTANT};
  startingPoles(FITMODEL.YPOLE, N, G.WFREQ[1], G.WFREQ[NS]);
  RELOCATE(PASSES, samples, N, FITMODEL.YPOLE);
  classifyPoles(FITMODEL.YPOLE, N, CINDEX);
}

// Columns of the basis, and of the constant term unless the DC values fix it.
void fillMatrix(int NS, int N, bool constrained) {
  const FrequencyGrid& G = SOLVEDATA.grid;
  const RView A = LSQ.matrix();
  for (int m = 1; m <= N; ++m) {
    basisCurve(FITMODEL.YPOLE, CINDEX, m, G.WFREQ, NS, phi);
    if (constrained) {
      const Complex atZero = basisFunction(FITMODEL.YPOLE, CINDEX, m, 0.0);
      for (int k = 1; k <= NS; ++k) phi[k] -= atZero;
    }
    curveColumn(phi, G.WFIT, NS, columnRows(A, m, NS));
  }
  if (!constrained) constantColumn(G.WFIT, NS, columnRows(A, N + 1, NS));
}

void fillRightSides(int NS, bool constrained) {
  const int n = RUNDATA.line.NC;
  const FreqCurve& W = SOLVEDATA.grid.WFIT;
  const RView B = LSQ.rightSides();
  for (int r = 1; r <= n; ++r) {
    for (int c = 1; c <= n; ++c) {
      const double dc = constrained ? YDC(r, c) : 0.0;
      double* b = B.column((r - 1) * n + c);
      for (int k = 1; k <= NS; ++k) {
        const Complex y = SOLVEDATA.second.YCST(k, r, c);
        b[k - 1] = W[k] * (y.real() - dc);
        b[NS + k - 1] = W[k] * y.imag();
      }
    }
  }
}

// Sum over the poles of the real part of R / p.
double ratioSum(const PoleTable& R, int N) {
  double sum = 0.0;
  for (int m = 1; m <= N; ++m) {
    const Complex p = FITMODEL.YPOLE[m];
    sum += (R[m] * std::conj(p)).real() / std::norm(p);
  }
  return sum;
}

void takeSolution(int N, bool constrained) {
  const int n = RUNDATA.line.NC;
  const RView X = LSQ.rightSides();
  for (int r = 1; r <= n; ++r) {
    for (int c = 1; c <= n; ++c) {
      const int column = (r - 1) * n + c;
      PoleTable& R = FITMODEL.YRES(r, c);
      residuesOf(CINDEX, N, X, column, R);
      FITMODEL.YD(r, c) = constrained ? YDC(r, c) + ratioSum(R, N) : X(N + 1, column);
    }
  }
}

void fitResidues(int NS, int N, bool constrained) {
  const int n = RUNDATA.line.NC;
  fillMatrix(NS, N, constrained);
  fillRightSides(NS, constrained);
  DGELSY(LSQ.matrix(), LSQ.rightSides(), 2 * NS, constrained ? N : N + 1, n * n, RCOND);
  takeSolution(N, constrained);
}

// Largest deviation over the largest magnitude, over all elements and frequencies; not a number
// when a value of the model is none.
double relativeError(int NS, int N) {
  const int n = RUNDATA.line.NC;
  const FreqCurve& WFREQ = SOLVEDATA.grid.WFREQ;
  double err = 0.0, f = 0.0;
  for (int r = 1; r <= n; ++r) {
    for (int c = 1; c <= n; ++c) {
      ComplexCurve& model = FITTED.YC.curve(r, c);
      partialFractionCurve(FITMODEL.YPOLE, FITMODEL.YRES(r, c), N, FITMODEL.YD(r, c), 0.0, WFREQ,
                           NS, model);
      const auto& Y = SOLVEDATA.second.YCST.curve(r, c);
      for (int k = 1; k <= NS; ++k) {
        const double e = std::abs(model[k] - Y[k]);
        if (!(e <= err)) err = e;
        if (std::isnan(err)) return err;
        f = std::max(f, std::abs(Y[k]));
      }
    }
  }
  return f > TINY ? err / f : err;
}

// The real pole that takes up the difference to the DC values.
void addExtraPole(int& N) {
  const int n = RUNDATA.line.NC;
  DCVALUES(YDC, HDC);
  const int before = N;
  ++N;
  FITMODEL.YPOLE[N] = -PI;
  for (int r = 1; r <= n; ++r) {
    for (int c = 1; c <= n; ++c) {
      PoleTable& R = FITMODEL.YRES(r, c);
      R[N] = -PI * (FITMODEL.YD(r, c) - YDC(r, c) - ratioSum(R, before));
    }
  }
}

void printResult(const AdmittanceWish& wish, int limit, double err, int N) {
  printErrorRequested(100 * wish.target);
  console::print(" Maximum Number of Poles: {:38}{}", "", integerField(limit, 3));
  console::line();
  console::line(" Yc:          Maximum          Number");
  console::line("              Fitting Error    of Poles");
  console::line("              --------------   --------");
  const double percent = 100 * err;
  Record row;
  row.blanks(15);
  if (percent < SMALLERROR) {
    row.scientific(percent, 9, 3);
  } else {
    row.fixed(percent, 9, 4);
  }
  row.text(" %").blanks(6).integer(N, 3);
  console::line(row.view());
  console::line();
}

void warnOfError() {
  console::line();
  console::line("*WARNING*: The relative fitting error exceeds the ");
  console::line("           maximum requested. This may be partially");
  console::line("           improved by increasing the maximum # of");
  console::line("           poles.");
  warn();
}

} // namespace

void YCFIT(const AdmittanceWish& wish) {
  const int NS = SOLVEDATA.grid.NFUSE;
  const int limit = std::min(wish.limit, NPMAX);
  const bool constrained = wish.dcType == DCCONSTRAINED;
  if (constrained) DCVALUES(YDC, HDC);
  formTrace(NS);
  int N = 1;
  double err = 0.0;
  for (;; ++N) {
    findPoles(NS, N);
    fitResidues(NS, N, constrained);
    err = relativeError(NS, N);
    if (err <= wish.target || N >= limit) break;
  }
  if (!std::isfinite(err)) {
    refuseFit("The Fit of the Characteristic Admittance gives no Finite Numbers!");
  }
  if (wish.dcType == DCEXTRAPOLE) addExtraPole(N);
  FITMODEL.NPY = N;
  printResult(wish, limit, err, N);
  if (100 * err > 100 * wish.target) warnOfError();
}

} // namespace lcp

// The poles come from vector fitting the trace of F. With the real basis functions phi_m and
// weights W_k, one linear least-squares problem has all elements as right-hand sides:
//
//   W_k (sum over m of x_m phi_m(j w_k) + D + j w_k E) = W_k F(i,j)(j w_k),   k = 1 to NS,
//
// real parts in rows 1 to NS, imaginary parts below them. The columns are not scaled: those of
// poles are of order 1 / w, that of E is of order w, so the rank at RCOND and the order of the
// columns affect the result.
//
// If values at s = 0 are prescribed, the unknowns are those of F(i,j) - DC(i,j), the value at s = 0
// is subtracted from each basis function, and D follows from DC = D - sum R / p.
#include "fit/matrix_fit.h"

#include "base/finite.h"
#include "fit/partial_fractions.h"
#include "fit/vector_fit.h"
#include "store/rundata.h"

#include <algorithm>
#include <cmath>

namespace lcp {

namespace {

constexpr double RCOND = 1e-14; // of the residue problem
constexpr double TINY = 1e-20;  // smaller magnitudes are not divided by

ComplexCurve trace, phi;
PoleClasses CINDEX;

// Poles of the trace, from N starting poles.
void findPoles(const MatrixFit& Q, int N) {
  const FrequencyGrid& G = SOLVEDATA.grid;
  const int ASYMP = Q.E == nullptr ? WITHCONSTANT : WITHPROPORTION;
  const FitSamples samples{G.NFUSE, 1, G.WFREQ, &trace, G.WFIT, FLIPUNSTABLE, ASYMP};
  startingPoles(Q.P, N, G.WFREQ[1], G.WFREQ[G.NFUSE]);
  RELOCATE(Q.PASSES, samples, N, Q.P);
}

// Fills the columns of the basis, of the constant unless prescribed values at s = 0 fix it, and of
// E. Returns their number.
int fillMatrix(const MatrixFit& Q, int NS, int N) {
  const FrequencyGrid& G = SOLVEDATA.grid;
  const RView A = LSQ.matrix();
  for (int m = 1; m <= N; ++m) {
    basisCurve(Q.P, CINDEX, m, G.WFREQ, NS, phi);
    if (Q.DC != nullptr) {
      const Complex atZero = basisFunction(Q.P, CINDEX, m, 0.0);
      for (int k = 1; k <= NS; ++k) phi[k] -= atZero;
    }
    curveColumn(phi, G.WFIT, NS, columnRows(A, m, NS));
  }
  int columns = N;
  if (Q.DC == nullptr) constantColumn(G.WFIT, NS, columnRows(A, ++columns, NS));
  if (Q.E != nullptr) proportionalColumn(G.WFREQ, G.WFIT, NS, columnRows(A, ++columns, NS));
  return columns;
}

int elementNumber(int i, int j) { return (i - 1) * RUNDATA.line.NC + j; }

void fillRightSides(const MatrixFit& Q, int NS, RView B) {
  const FreqCurve& W = SOLVEDATA.grid.WFIT;
  for (int i = 1; i <= RUNDATA.line.NC; ++i) {
    for (int j = 1; j <= RUNDATA.line.NC; ++j) {
      const auto& F = Q.F.curve(i, j);
      const double dc = Q.DC == nullptr ? 0.0 : (*Q.DC)(i, j);
      const ColumnRows b = columnRows(B, elementNumber(i, j), NS);
      for (int k = 1; k <= NS; ++k) {
        b.re[k - 1] = W[k] * (F[k].real() - dc);
        b.im[k - 1] = W[k] * F[k].imag();
      }
    }
  }
}

void takeSolution(const MatrixFit& Q, int N, int columns, RConstView X) {
  for (int i = 1; i <= RUNDATA.line.NC; ++i) {
    for (int j = 1; j <= RUNDATA.line.NC; ++j) {
      const int element = elementNumber(i, j);
      PoleTable& R = Q.R(i, j);
      residuesOf(CINDEX, N, X, element, R);
      Q.D(i, j) = Q.DC == nullptr ? X(N + 1, element) : (*Q.DC)(i, j) + ratioSum(Q.P, R, N);
      if (Q.E != nullptr) (*Q.E)(i, j) = X(columns, element);
    }
  }
}

void evaluateModel(const MatrixFit& Q, int NS, int N) {
  static PoleCurves u;
  const FreqCurve& W = SOLVEDATA.grid.WFREQ;
  const int n = RUNDATA.line.NC;
  poleCurves(Q.P, N, W, NS, u);
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) {
      const double E = Q.E == nullptr ? 0.0 : (*Q.E)(i, j);
      partialFractionCurve(u, Q.R(i, j), N, Q.D(i, j), E, W, NS, Q.FIT.curve(i, j));
    }
  }
}

double relativeError(const MatrixFit& Q, int NS) {
  LargestModulus err, f;
  for (int j = 1; j <= RUNDATA.line.NC; ++j) {
    for (int i = 1; i <= RUNDATA.line.NC; ++i) {
      const ComplexCurve& model = Q.FIT.curve(i, j);
      const ComplexCurve& F = Q.F.curve(i, j);
      for (int k = 1; k <= NS; ++k) {
        err.take(model[k] - F[k]);
        f.take(F[k]);
      }
    }
  }
  return f > TINY ? err / f : err;
}

} // namespace

const ComplexCurve& formTrace(const MatrixFit& Q) {
  const int NS = SOLVEDATA.grid.NFUSE;
  std::fill_n(trace.steps, NS, 0.0);
  for (int i = 1; i <= RUNDATA.line.NC; ++i) {
    for (int k = 1; k <= NS; ++k) trace[k] += Q.F(k, i, i);
  }
  return trace;
}

void fitResidues(const MatrixFit& Q, int N) {
  const int NS = SOLVEDATA.grid.NFUSE;
  classifyPoles(Q.P, N, CINDEX);
  const int columns = fillMatrix(Q, NS, N);
  const int elements = RUNDATA.line.NC * RUNDATA.line.NC;
  const RView B = LSQ.rightSides(std::max(2 * NS, columns));
  fillRightSides(Q, NS, B);
  if (Q.JPVT == nullptr) {
    DGELSY(LSQ.matrix(), B, 2 * NS, columns, elements, RCOND);
  } else {
    DGELSY(LSQ.matrix(), B, 2 * NS, columns, elements, *Q.JPVT, RCOND);
  }
  takeSolution(Q, N, columns, B);
}

double modelError(const MatrixFit& Q, int N) {
  const int NS = SOLVEDATA.grid.NFUSE;
  evaluateModel(Q, NS, N);
  return relativeError(Q, NS);
}

MatrixFitResult FITMATRIX(const MatrixFit& Q, int NMAX, double TARGET) {
  const int limit = std::min(NMAX, NPMAX);
  formTrace(Q);
  for (int N = 1;; ++N) {
    findPoles(Q, N);
    fitResidues(Q, N);
    const double ERR = modelError(Q, N);
    if (ERR <= TARGET || N >= limit) return {N, ERR};
  }
}

double ratioSum(const PoleTable& P, const PoleTable& R, int N) {
  double sum = 0.0;
  for (int m = 1; m <= N; ++m) sum += (R[m] * std::conj(P[m])).real() / std::norm(P[m]);
  return sum;
}

} // namespace lcp

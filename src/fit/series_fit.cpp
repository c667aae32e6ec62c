// The poles come from vector fitting of the trace of Z. Over them, with the real basis functions
// phi_m and weights W_k, one linear least-squares problem has all elements as right-hand sides:
//
//   W_k (sum over m of x_m phi_m(j w_k) + D + j w_k E) = W_k Z(i,j)(j w_k),   k = 1 to NS,
//
// real parts in rows 1 to NS, imaginary parts below them. Its columns are not scaled: those of
// poles are of the size 1 / w, that of E of the size w, so the rank at RCOND has a say in the
// result, and so has the order of the columns. The pivots of one pole count go into the next,
// and those of one length into the next length: a column that was in it keeps its place there, and
// one that is new stands behind them.
#include "fit/series_fit.h"

#include "base/console.h"
#include "base/record.h"
#include "fit/fit_console.h"
#include "fit/lapack.h"
#include "fit/partial_fractions.h"
#include "fit/vector_fit.h"
#include "store/rundata.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace lcp {

namespace {

constexpr int PASSES = 10;            // of the vector fit, for each number of poles
constexpr double RCOND = 1e-14;       // of the residue problem
constexpr double TINY = 1e-20;        // magnitudes up to this are not divided by
constexpr double SMALLERROR = 0.0005; // per cent; smaller ones are printed in scientific form
constexpr double PERCENT = 0.01;
constexpr int RULELENGTH = 53;

ComplexCurve trace, phi;
PoleClasses CINDEX;
ColumnInts JPVT; // column pivots, 0 at the start of the run only

// Poles start at the logarithms of the frequencies.
void checkFrequencies(int NS) {
  const FreqCurve& W = SOLVEDATA.grid.WFREQ;
  if (std::all_of(W.steps, W.steps + NS, [](double w) { return w > 0.0; })) return;
  refuseFit("All Frequencies of the Series Impedance Fit Must be > 0!");
}

void formTrace(int NS) {
  std::fill_n(trace.steps, NS, 0.0);
  for (int i = 1; i <= RUNDATA.line.NC; ++i) {
    for (int k = 1; k <= NS; ++k) trace[k] += SOLVEDATA.at.ZSTORE(k, i, i);
  }
}

// Poles of the trace, from N starting poles.
void findPoles(int NS, int N) {
  const FrequencyGrid& G = SOLVEDATA.grid;
  const FitSamples samples{NS, 1, G.WFREQ, &trace, G.WFIT, FLIPUNSTABLE, WITHPROPORTION};
  startingPoles(SERIESMODEL.ZFP, N, G.WFREQ[1], G.WFREQ[NS]);
  RELOCATE(PASSES, samples, N, SERIESMODEL.ZFP);
  classifyPoles(SERIESMODEL.ZFP, N, CINDEX);
}

void fillProblem(int NS, int N) {
  const FrequencyGrid& G = SOLVEDATA.grid;
  const int n = RUNDATA.line.NC;
  const RView A = LSQ.matrix();
  for (int m = 1; m <= N; ++m) {
    basisCurve(SERIESMODEL.ZFP, CINDEX, m, G.WFREQ, NS, phi);
    curveColumn(phi, G.WFIT, NS, columnRows(A, m, NS));
  }
  constantColumn(G.WFIT, NS, columnRows(A, N + 1, NS));
  proportionalColumn(G.WFREQ, G.WFIT, NS, columnRows(A, N + 2, NS));
  for (int i = 1; i <= n; ++i) {
    for (int j = 1; j <= n; ++j) {
      const ColumnRows b = columnRows(LSQ.rightSides(), (i - 1) * n + j, NS);
      curveColumn(SOLVEDATA.at.ZSTORE.curve(i, j), G.WFIT, NS, b);
    }
  }
}

void takeSolution(int N) {
  const int n = RUNDATA.line.NC;
  const RView X = LSQ.rightSides();
  for (int i = 1; i <= n; ++i) {
    for (int j = 1; j <= n; ++j) {
      const int column = (i - 1) * n + j;
      residuesOf(CINDEX, N, X, column, SERIESMODEL.ZFR(i, j));
      SERIESMODEL.ZFD(i, j) = X(N + 1, column);
      SERIESMODEL.ZFE(i, j) = X(N + 2, column);
    }
  }
}

void fitResidues(int NS, int N) {
  const int n = RUNDATA.line.NC;
  fillProblem(NS, N);
  DGELSY(LSQ.matrix(), LSQ.rightSides(), 2 * NS, N + 2, n * n, JPVT, RCOND);
  takeSolution(N);
}

void evaluateModel(int NS, int N) {
  SeriesModel& M = SERIESMODEL;
  const FreqCurve& W = SOLVEDATA.grid.WFREQ;
  const int n = RUNDATA.line.NC;
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) {
      ComplexCurve& F = M.ZFIT.curve(i, j);
      for (int k = 1; k <= NS; ++k) F[k] = Complex(M.ZFD(i, j), W[k] * M.ZFE(i, j));
    }
  }
  for (int m = 1; m <= N; ++m) {
    poleCurve(M.ZFP[m], W, NS, phi);
    for (int j = 1; j <= n; ++j) {
      for (int i = 1; i <= n; ++i) addTimes(M.ZFR(i, j)[m], phi, NS, M.ZFIT.curve(i, j));
    }
  }
}

// Largest deviation over the largest magnitude, over all elements and frequencies; not a number
// when a value of the model is none.
double relativeError(int NS) {
  const int n = RUNDATA.line.NC;
  double err = 0.0, z = 0.0;
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) {
      const ComplexCurve& F = SERIESMODEL.ZFIT.curve(i, j);
      const ComplexCurve& Z = SOLVEDATA.at.ZSTORE.curve(i, j);
      for (int k = 1; k <= NS; ++k) {
        const double e = std::abs(F[k] - Z[k]);
        if (!(e <= err)) err = e;
        if (std::isnan(err)) return err;
        z = std::max(z, std::abs(Z[k]));
      }
    }
  }
  return z > TINY ? err / z : err;
}

void printResult(int NMAX, double TARGET, double err, int N) {
  const double percent = 100 * err;
  console::line(" Relative Fitting Error          Number of Poles");
  console::line(" ----------------------          ---------------");
  Record wish(" Maximum: ");
  wish.fixed(100 * TARGET, 9, 4).text(" %").blanks(11).text(" Maximum: ").integer(NMAX, 3);
  console::line(wish.view());
  Record actual("  Actual: ");
  if (percent < SMALLERROR) {
    actual.blanks(3).scientific(percent, 9, 3).text(" %").blanks(8);
  } else {
    actual.fixed(percent, 9, 4).text(" %").blanks(11);
  }
  console::line(actual.text("  Actual: ").integer(N, 3).view());
}

void warnOfError() {
  console::line();
  console::line(" *WARNING*: The relative fitting error exceeds the ");
  console::line("            maximum requested. This may be partially");
  console::line("            improved by increasing the maximum # of");
  console::line("            poles.");
  warn();
}

void fitRule53(char sign) { console::line(" " + std::string(RULELENGTH, sign)); }

} // namespace

double SERIESFIT(int NMAX, double TARGET) {
  const int NS = SOLVEDATA.grid.NFUSE;
  const int limit = std::min(NMAX, NPMAX);
  checkFrequencies(NS);
  SERIESMODEL.ZFR.map(RUNDATA.line.NC);
  SERIESMODEL.ZFIT.map(RUNDATA.line.NC);
  formTrace(NS);
  int N = 1;
  double err = 0.0;
  for (;; ++N) {
    findPoles(NS, N);
    fitResidues(NS, N);
    evaluateModel(NS, N);
    err = relativeError(NS);
    if (err <= TARGET || N >= limit) break;
  }
  if (!std::isfinite(err)) refuseFit("The Fit of the Series Impedance gives no Finite Numbers!");
  SERIESMODEL.NPZ = N;
  printResult(limit, TARGET, err, N);
  if (100 * err > 100 * TARGET) warnOfError();
  return err;
}

void fitSeriesImpedance() {
  console::line();
  console::line();
  fitRule53('*');
  console::line(" CURVE FITTING OUTPUT");
  fitRule53('*');
  console::line();
  console::line(" Fitting Series Impedance Z:");
  fitRule53('=');
  SERIESFIT(RUNDATA.fit.MAXPZ, RUNDATA.fit.ERRZ * PERCENT);
  fitRule53('=');
  console::line();
}

} // namespace lcp

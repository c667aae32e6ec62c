// Vector fitting in its basic form. With a scaling function sigma that has the poles p_m of the
// previous pass and the constant term 1,
//
//   sigma(s) = 1 + sum c_m / (s - p_m),   sigma(s) F(s) = D + s E + sum r_m / (s - p_m),
//
// the second equation, sampled at s = j w_k and weighted, is linear in c, r, D and E:
//
//   W (sum r_m phi_m + D + s E) - W F sum c_m phi_m = W F
//
// The poles of F are the zeros of sigma, which are the eigenvalues of A - b c^T, where (A, b, c) is
// the real state space form of sigma: blocks [a, beta; -beta, a] and b = (2, 0) for a pair a +- j
// beta, p and b = 1 for a real pole. Over the new poles the residues are a linear problem. All
// unknowns are real: phi_m are the basis functions of partial_fractions.h.
//
// In the first problem each function has its own block of columns (r, D, E) and all share the last
// N columns, c; the rows are the real parts of all functions, then the imaginary parts. In the
// second problem the functions are right-hand sides of one matrix.
#include "fit/vector_fit.h"

#include "base/console.h"
#include "base/finite.h"
#include "base/register_widths.h"
#include "fit/scaled_columns.h"
#include "kernels/lapack.h"

#include <algorithm>
#include <cmath>

namespace lcp {

namespace {

constexpr double RCOND = 1e-16;
constexpr double SMALLSAMPLE = 1e-100; // a smaller magnitude is not used for a relative deviation
constexpr double SMALLPEAK = 1e-20;    // ... for normalising deviations

PoleClasses CINDEX;
ColumnReals SCALE;
ComplexCurve phi;

// Columns of a function in addition to those of its poles.
int asymptoteColumns(int ASYMP) {
  if (ASYMP < NOASYMPTOTE || ASYMP > WITHPROPORTION) console::line("ERROR 1");
  return std::clamp(ASYMP, NOASYMPTOTE, WITHPROPORTION) - 1;
}

// Rows of function i in a column of the first problem.
ColumnRows rowsOf(const FitSamples& Q, int i, double* column) {
  double* re = column + static_cast<std::ptrdiff_t>(i - 1) * Q.NS;
  return {re, re + static_cast<std::ptrdiff_t>(Q.NF) * Q.NS};
}

// phi = weighted basis function m.
void weightedBasis(const FitSamples& Q, const PoleTable& P, int m) {
  basisCurve(P, CINDEX, m, Q.WFREQ, Q.NS, phi);
  for (int k = 1; k <= Q.NS; ++k) phi[k] *= Q.WFIT[k];
}

void basisRows(int NS, ColumnRows to) {
  for (int k = 1; k <= NS; ++k) {
    to.re[k - 1] = phi[k].real();
    to.im[k - 1] = phi[k].imag();
  }
}

void sigmaRows(const ComplexCurve& F, int NS, ColumnRows to) {
  for (int k = 1; k <= NS; ++k) {
    const Complex product = phi[k] * F[k];
    to.re[k - 1] = -product.real();
    to.im[k - 1] = -product.imag();
  }
}

void asymptoteRows(const FitSamples& Q, int offs, int i, RView A, int last) {
  if (offs >= 1) constantColumn(Q.WFIT, Q.NS, rowsOf(Q, i, A.column(last + 1)));
  if (offs == 2) proportionalColumn(Q.WFREQ, Q.WFIT, Q.NS, rowsOf(Q, i, A.column(last + 2)));
}

LCP_WIDTHS("avx2")
void relocationProblem(const FitSamples& Q, int offs, int N, const PoleTable& P) {
  const RView A = LSQ.matrix();
  const int block = N + offs;
  if (Q.NF > 1) {
    for (int c = 1; c <= Q.NF * block; ++c) std::fill_n(A.column(c), 2 * Q.NS * Q.NF, 0.0);
  }
  for (int m = 1; m <= N; ++m) {
    weightedBasis(Q, P, m);
    for (int i = 1; i <= Q.NF; ++i) {
      basisRows(Q.NS, rowsOf(Q, i, A.column((i - 1) * block + m)));
      sigmaRows(Q.F[i - 1], Q.NS, rowsOf(Q, i, A.column(Q.NF * block + m)));
    }
  }
  for (int i = 1; i <= Q.NF; ++i) {
    asymptoteRows(Q, offs, i, A, (i - 1) * block + N);
    curveColumn(Q.F[i - 1], Q.WFIT, Q.NS, rowsOf(Q, i, LSQ.B));
  }
}

void solveScaled(int rows, int columns, int rightSides) {
  scaleColumns(LSQ.matrix(), rows, columns, SCALE);
  DGELSY(LSQ.matrix(), LSQ.rightSides(), rows, columns, rightSides, RCOND);
  unscaleRows(LSQ.rightSides(), columns, rightSides, SCALE);
}

// State matrix of 1 / sigma: A - b c^T.
void stateMatrix(int N, const PoleTable& P, const double* c, RView Z) {
  for (int m = 1; m <= N; ++m) {
    std::fill_n(Z.column(m), N, 0.0);
    Z(m, m) = P[CINDEX[m] == PAIRSECOND ? m - 1 : m].real();
    if (CINDEX[m] == PAIRFIRST && m < N) Z(m + 1, m) = -P[m].imag();
    if (CINDEX[m] == PAIRSECOND) Z(m - 1, m) = P[m - 1].imag();
    for (int r = 1; r <= N; ++r) {
      const double b = CINDEX[r] == REALPOLE ? 1.0 : CINDEX[r] == PAIRFIRST ? 2.0 : 0.0;
      Z(r, m) -= b * c[m - 1];
    }
  }
}

// Exchange sort by ascending modulus. Conjugates have the same modulus and end up adjacent.
void sortPoles(PoleTable& P, int N) {
  Table<double, NPMAX> modulus;
  for (int i = 1; i <= N; ++i) modulus[i] = std::abs(P[i]);
  for (int i = 1; i <= N; ++i) {
    for (int j = i; j <= N; ++j) {
      if (!(modulus[j] < modulus[i])) continue;
      std::swap(P[i], P[j]);
      std::swap(modulus[i], modulus[j]);
    }
  }
}

void zerosOfSigma(int N, const double* c, PoleTable& P) {
  static SquareStore<double, NPMAX> Z;
  static Table<double, NPMAX> WR;
  static Table<double, NPMAX> WI;
  stateMatrix(N, P, c, Z);
  DGEEV(Z, N, WR, WI);
  for (int m = 1; m <= N; ++m) P[m] = Complex(WR[m], WI[m]);
}

void flipUnstable(PoleTable& P, int N) {
  for (int m = 1; m <= N; ++m) {
    if (P[m].real() > 0) P[m].real(P[m].real() - 2 * P[m].real());
  }
}

void relocateOnce(const FitSamples& Q, int offs, int N, PoleTable& POLES) {
  const int columns = Q.NF * (N + offs) + N;
  classifyPoles(POLES, N, CINDEX);
  relocationProblem(Q, offs, N, POLES);
  solveScaled(2 * Q.NS * Q.NF, columns, 1);
  TAKEZEROS(N, LSQ.B + (columns - N), Q.STABLE, POLES);
}

LCP_WIDTHS("avx2") void residueProblem(const FitSamples& Q, int offs, int N, const PoleTable& P) {
  const RView A = LSQ.matrix();
  for (int m = 1; m <= N; ++m) {
    weightedBasis(Q, P, m);
    basisRows(Q.NS, columnRows(A, m, Q.NS));
  }
  if (offs >= 1) constantColumn(Q.WFIT, Q.NS, columnRows(A, N + 1, Q.NS));
  if (offs == 2) proportionalColumn(Q.WFREQ, Q.WFIT, Q.NS, columnRows(A, N + 2, Q.NS));
  for (int i = 1; i <= Q.NF; ++i) {
    curveColumn(Q.F[i - 1], Q.WFIT, Q.NS, columnRows(LSQ.rightSides(), i, Q.NS));
  }
}

void residuesOnce(const FitSamples& Q, int offs, int N, const PoleTable& P, FunctionFit* FITS) {
  const RView X = LSQ.rightSides();
  classifyPoles(P, N, CINDEX);
  residueProblem(Q, offs, N, P);
  solveScaled(2 * Q.NS, N + offs, Q.NF);
  for (int i = 1; i <= Q.NF; ++i) {
    FunctionFit& fit = FITS[i - 1];
    residuesOf(CINDEX, N, X, i, fit.R);
    fit.D = offs >= 1 ? X(N + 1, i) : 0.0;
    fit.E = offs == 2 ? X(N + 2, i) : 0.0;
    partialFractionCurve(P, fit.R, N, fit.D, fit.E, Q.WFREQ, Q.NS, fit.FIT);
  }
}

void deviations(const FitSamples& Q, const FunctionFit* FITS, FitErrors& ERRORS) {
  double squares = 0;
  double f = 0;
  ERRORS.ERRMAX = 0;
  ERRORS.ERRREL = 0;
  for (int k = 1; k <= Q.NS; ++k) {
    double ek = 0;
    double fk = 0;
    for (int i = 0; i < Q.NF; ++i) {
      const double e = std::abs(FITS[i].FIT[k] - Q.F[i][k]);
      squares += e * e;
      ek = larger(ek, e);
      fk = larger(fk, std::abs(Q.F[i][k]));
    }
    ERRORS.ERRMAX = larger(ERRORS.ERRMAX, ek);
    if (fk >= SMALLSAMPLE) ERRORS.ERRREL = larger(ERRORS.ERRREL, ek / fk);
    f = larger(f, fk);
  }
  ERRORS.ERRRMS = std::sqrt(squares / (static_cast<double>(Q.NF) * Q.NS));
  ERRORS.ERRNORM = f > SMALLPEAK ? ERRORS.ERRMAX / f : ERRORS.ERRMAX;
}

// The second half of a pass.
void identify(const FitSamples& Q, int offs, int N, const PoleTable& P, FunctionFit* FITS,
              FitErrors& ERRORS) {
  residuesOnce(Q, offs, N, P, FITS);
  deviations(Q, FITS, ERRORS);
}

} // namespace

double LOGPOLE(int I, double WLO, double WHI, int N) {
  if (N < 2) return WLO;
  const double low = std::log10(WLO);
  return std::pow(10.0, low + (std::log10(WHI) - low) / (N - 1) * (I - 1));
}

void startingPoles(PoleTable& P, int N, double WLO, double WHI) {
  for (int i = 1; i <= N; ++i) P[i] = Complex(-LOGPOLE(i, WLO, WHI, N), 0.0);
}

void TAKEZEROS(int N, const double* c, int STABLE, PoleTable& POLES) {
  classifyPoles(POLES, N, CINDEX);
  zerosOfSigma(N, c, POLES);
  sortPoles(POLES, N);
  if (STABLE == FLIPUNSTABLE) flipUnstable(POLES, N);
}

void RELOCATE(int passes, const FitSamples& Q, int N, PoleTable& POLES) {
  const int offs = asymptoteColumns(Q.ASYMP);
  for (int pass = 1; pass <= passes; ++pass) relocateOnce(Q, offs, N, POLES);
}

void VFIT(const FitSamples& Q, int N, PoleTable& POLES, FunctionFit* FITS, FitErrors& ERRORS) {
  const int offs = asymptoteColumns(Q.ASYMP);
  relocateOnce(Q, offs, N, POLES);
  identify(Q, offs, N, POLES, FITS, ERRORS);
}

void VFITPASSES(int passes, const FitSamples& Q, int N, PoleTable& POLES, FunctionFit* FITS,
                FitErrors& ERRORS) {
  if (passes < 1) {
    identify(Q, asymptoteColumns(Q.ASYMP), N, POLES, FITS, ERRORS);
    return;
  }
  RELOCATE(passes - 1, Q, N, POLES);
  VFIT(Q, N, POLES, FITS, ERRORS);
}

} // namespace lcp

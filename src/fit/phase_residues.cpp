// With the real basis functions phi_q of all poles of all groups, q = 1 to n, and the delay tau_q
// of the group of each pole, the model of each element of H is
//
//   M(s) = sum over q of x_q B_q(s),   B_q(s) = phi_q(s) exp(-s tau_q),
//
// which is linear in the real unknowns x. All elements share the matrix and its factorisation. Its
// rows are the weighted real parts at s = j w_k above the imaginary parts; its columns are scaled
// to unit length.
//
// A DC correction determines the residue of a real pole a of group 1, the closing pole c, from M(0)
// = Hdc, where all delay factors are 1:
//
//   -x_c / a + sum' x_q phi_q(0) = Hdc   ->   x_c = a (sum' x_q phi_q(0) - Hdc)
//
// summed over all poles but the closing one. In the constrained case this is substituted into the
// fit:
//
//   sum' x_q (B_q + a phi_q(0) B_c) = H + a Hdc B_c
//
// otherwise the closing pole is added to a fit made without it.
#include "fit/phase_residues.h"

#include "base/big_store.h"
#include "base/constants.h"
#include "base/finite.h"
#include "base/register_widths.h"
#include "fit/dc_values.h"
#include "fit/fit_store.h"
#include "fit/partial_fractions.h"
#include "fit/scaled_columns.h"
#include "kernels/lapack.h"

#include <algorithm>
#include <cmath>

namespace lcp {

namespace {

constexpr double RCOND = 1e-12;
constexpr double LEASTVALUE = 1e-14; // smallest singular value that counts, relative to the largest
constexpr double NORESIDUE = 1e-20;  // a smaller residue counts as 0
constexpr double IMAGZERO = 1e-20;   // largest imaginary part, rad/s, of a first pole that closes
constexpr double RATIOMARGIN = 1.1;  // a ratio must exceed the largest so far by this factor
constexpr double CLOSINGPOLE = -PI;  // rad/s

// Number of elements whose models are summed together, and number of values of each that a sweep
// over the basis keeps in registers.
constexpr int ELEMENTS = 4;
constexpr int WIDTH = 2 * LANES;

// Storage of a problem without gaps, mapped for the largest problem so far.
struct PhaseProblem {
  MappedArray<Complex> basis;
  MappedArray<double> A, B, U, VT;
};

PhaseProblem STORE{};

template <class T> View<T> roomFor(MappedArray<T>& store, int rows, int columns) {
  const auto m = static_cast<std::size_t>(rows), n = static_cast<std::size_t>(columns);
  return {store.room(m * n), rows};
}

// The problem of one call: its samples, its sizes, and views of the storage.
struct Problem {
  explicit Problem(const PhaseSamples& samples) : Q(samples), NS(samples.NS) {}

  const PhaseSamples& Q;
  int NS;
  int poles = 0;    // of all groups, including the closing pole
  int unknowns = 0; // without the closing pole
  int closing = 0;  // index of the closing pole in group 1; 0 if none
  double a = 0;     // the closing pole, rad/s
  bool constrained = false;
  CView basis; // one column per B_q
  RView A;
  RView B;
};

Table<PoleClasses, NGMAX> CINDEX;
ColumnReals atZero;             // phi_q(0)
ColumnReals unknowns[ELEMENTS]; // including the residues of the closing pole
ColumnReals SCALE;
ComplexCurve lag, curve;

// The pole of group 1 that meets the DC value; it is added if there is none.
int closingPole(int DCTYPE) {
  if (DCTYPE != DCCONSTRAINED && DCTYPE != DCEXTRAPOLE) return 0;
  PoleTable& P = FITMODEL.HPOLE[1];
  int& NH = FITMODEL.NH[1];
  if (DCTYPE == DCCONSTRAINED && NH > 0 && std::fabs(P[1].imag()) <= IMAGZERO) return 1;
  P[++NH] = CLOSINGPOLE;
  return NH;
}

Problem layProblem(const PhaseSamples& Q, int DCTYPE) {
  Problem p(Q);
  p.closing = closingPole(DCTYPE);
  if (p.closing > 0) p.a = FITMODEL.HPOLE[1][p.closing].real();
  p.constrained = DCTYPE == DCCONSTRAINED;
  for (int g = 1; g <= FITMODEL.NGROUP; ++g) p.poles += FITMODEL.NH[g];
  p.unknowns = p.poles - (p.closing > 0 ? 1 : 0);
  p.basis = roomFor(STORE.basis, (2 * p.NS + WIDTH - 1) / WIDTH * WIDTH / 2, p.poles);
  p.A = roomFor(STORE.A, 2 * p.NS, p.unknowns);
  p.B = roomFor(STORE.B, std::max(2 * p.NS, p.unknowns), FITMODEL.NC * FITMODEL.NC);
  return p;
}

// lag = exp(-j w tau)
void formLag(const PhaseSamples& Q, double tau) {
  for (int k = 1; k <= Q.NS; ++k) {
    const double turn = Q.WFREQ[k] * tau;
    lag[k] = Complex(std::cos(turn), -std::sin(turn));
  }
}

void formBasis(const Problem& p) {
  int q = 0;
  for (int g = 1; g <= FITMODEL.NGROUP; ++g) {
    const PoleTable& P = FITMODEL.HPOLE[g];
    const int NH = FITMODEL.NH[g];
    classifyPoles(P, NH, CINDEX[g]);
    formLag(p.Q, FITMODEL.TAU[g]);
    for (int m = 1; m <= NH; ++m) {
      basisCurve(P, CINDEX[g], m, p.Q.WFREQ, p.NS, curve);
      Complex* b = p.basis.column(++q);
      for (int k = 1; k <= p.NS; ++k) b[k - 1] = curve[k] * lag[k];
      atZero[q] = basisFunction(P, CINDEX[g], m, 0.0).real();
    }
  }
}

// curve = F + factor B_c in a constrained fit, else F
void formCurve(const Problem& p, const Complex* F, double factor) {
  std::copy_n(F, p.NS, curve.steps);
  if (!p.constrained) return;
  const Complex* b = p.basis.column(p.closing);
  for (int k = 0; k < p.NS; ++k) curve.steps[k] += factor * b[k];
}

void fillMatrix(const Problem& p) {
  int c = 0;
  for (int q = 1; q <= p.poles; ++q) {
    if (q == p.closing) continue;
    formCurve(p, p.basis.column(q), p.a * atZero[q]);
    curveColumn(curve, p.Q.WFIT, p.NS, columnRows(p.A, ++c, p.NS));
  }
}

int elementNumber(int r, int c) { return (r - 1) * FITMODEL.NC + c; }

void fillRightSides(const Problem& p, const RealMatrix* HDC) {
  for (int c = 1; c <= FITMODEL.NC; ++c) {
    for (int r = 1; r <= FITMODEL.NC; ++r) {
      const double dc = p.constrained ? (*HDC)(r, c) : 0.0;
      formCurve(p, p.Q.H.curve(r, c).steps, p.a * dc);
      curveColumn(curve, p.Q.WFIT, p.NS, columnRows(p.B, elementNumber(r, c), p.NS));
    }
  }
}

// Replaces A (m by n) by the sum of the terms of its singular value decomposition that count.
void truncateRank(RView A, int m, int n) {
  static Table<double, LSROWS> S;
  const int least = std::min(m, n);
  const RView U = roomFor(STORE.U, m, least);
  const RView VT = roomFor(STORE.VT, least, n);
  DGESVD(A, m, n, S, U, VT);
  int K = 0;
  while (K < least && S[K + 1] > LEASTVALUE * S[1]) ++K;
  for (int c = 1; c <= n; ++c) {
    double* a = A.column(c);
    std::fill_n(a, m, 0.0);
    for (int i = 1; i <= K; ++i) {
      const double factor = S[i] * VT(i, c);
      const double* u = U.column(i);
      for (int r = 0; r < m; ++r) a[r] += factor * u[r];
    }
  }
}

void solve(const Problem& p, bool SVDFLAG) {
  const int m = 2 * p.NS;
  const int n = p.unknowns;
  const int elements = FITMODEL.NC * FITMODEL.NC;
  if (n < 1) return;
  scaleColumns(p.A, m, n, SCALE);
  if (SVDFLAG) truncateRank(p.A, m, n);
  DGELSY(p.A, p.B, m, n, elements, RCOND);
  unscaleRows(p.B, n, elements, SCALE);
}

// Takes x from the solution for an element.
void takeUnknowns(const Problem& p, int element, const RealMatrix* HDC, int r, int c,
                  ColumnReals& x) {
  const double* solution = p.B.column(element);
  double sum = 0;
  for (int q = 1; q <= p.poles; ++q) {
    x[q] = q == p.closing ? 0.0 : *solution++;
    sum += x[q] * atZero[q];
  }
  if (p.closing > 0) x[p.closing] = p.a * (sum - (*HDC)(r, c));
}

void storeResidues(const ColumnReals& x, int r, int c) {
  const double* first = x.data();
  for (int g = 1; g <= FITMODEL.NGROUP; ++g) {
    const int NH = FITMODEL.NH[g];
    residuesOf(CINDEX[g], NH, RConstView(first, MAXPOLES), 1, FITMODEL.HRES[g](r, c));
    first += NH;
  }
}

// sums(e) = sum over q of x(e,q) b_q in order; b_q has WIDTH values and is followed by the next at
// ld.
void sumTerms(const double* b, std::ptrdiff_t ld, int poles, double (&sums)[ELEMENTS][WIDTH]) {
  Lanes s[ELEMENTS][2] = {};
  for (int q = 1; q <= poles; ++q, b += ld) {
    const Lanes first = {b[0], b[1], b[2], b[3]}, second = {b[4], b[5], b[6], b[7]};
    for (int e = 0; e < ELEMENTS; ++e) {
      s[e][0] += unknowns[e][q] * first;
      s[e][1] += unknowns[e][q] * second;
    }
  }
  for (int e = 0; e < ELEMENTS; ++e) {
    for (int i = 0; i < WIDTH; ++i) sums[e][i] = s[e][i / LANES][i % LANES];
  }
}

// Evaluates the model of the elements in rows r to r + count - 1 of column c. The basis has room
// for whole sweeps.
LCP_WIDTHS("avx2") void evaluateModel(const Problem& p, int r, int c, int count) {
  const double* basis = reinterpret_cast<const double*>(p.basis.first);
  double sums[ELEMENTS][WIDTH];
  for (int at = 0; at < 2 * p.NS; at += WIDTH) {
    sumTerms(basis + at, 2 * static_cast<std::ptrdiff_t>(p.basis.ld), p.poles, sums);
    for (int e = 0; e < count; ++e) {
      double* M = reinterpret_cast<double*>(p.Q.FIT.curve(r + e, c).steps);
      std::copy_n(sums[e], std::min(WIDTH, 2 * p.NS - at), M + at);
    }
  }
}

void takeElements(const Problem& p, const RealMatrix* HDC, PhaseFit& fit) {
  for (int c = 1; c <= FITMODEL.NC; ++c) {
    for (int r = 1; r <= FITMODEL.NC; r += ELEMENTS) {
      const int count = std::min(ELEMENTS, FITMODEL.NC + 1 - r);
      for (int e = 0; e < count; ++e) {
        takeUnknowns(p, elementNumber(r + e, c), HDC, r + e, c, unknowns[e]);
        storeResidues(unknowns[e], r + e, c);
      }
      evaluateModel(p, r, c, count);
      for (int e = 0; e < count; ++e)
        countDeviation(fit, p.Q.FIT.curve(r + e, c), p.Q.H.curve(r + e, c), p.NS);
    }
  }
}

void dropPolesWithoutResidue() {
  for (int g = 1; g <= FITMODEL.NGROUP; ++g) {
    const PoleTable& R = FITMODEL.HRES[g](1, 1);
    for (int m = FITMODEL.NH[g]; m >= 1; --m) {
      if (std::abs(R[m]) <= NORESIDUE) REMOVEPOLE(g, m);
    }
  }
}

} // namespace

namespace {

// Squared deviations in LANES sums side by side.
struct SquareSums {
  double sum[LANES] = {}, most[LANES] = {};

  void take(int lane, Complex deviation) {
    const double square = std::norm(deviation);
    sum[lane] += square;
    most[lane] = square > most[lane] ? square : most[lane];
  }
};

// Whether both measures of an element are certainly smaller than those so far, regardless of
// rounding.
LCP_WIDTHS("avx2")
bool clearlySmaller(const PhaseFit& fit, const Complex* M, const Complex* H, int NS) {
  SquareSums s;
  int k = 0;
  for (; k + LANES <= NS; k += LANES) {
    for (int lane = 0; lane < LANES; ++lane) s.take(lane, M[k + lane] - H[k + lane]);
  }
  for (; k < NS; ++k) s.take(0, M[k] - H[k]);
  const double squares = (s.sum[0] + s.sum[1]) + (s.sum[2] + s.sum[3]); // NaN if a deviation is NaN
  return squares < NS * squareBelow(fit.RMSERR) &&
         *std::max_element(s.most, s.most + LANES) < squareBelow(fit.MAXERR);
}

} // namespace

void countDeviation(PhaseFit& fit, const ComplexCurve& M, const ComplexCurve& H, int NS) {
  if (clearlySmaller(fit, M.steps, H.steps, NS)) return;
  double squares = 0;
  for (int k = 1; k <= NS; ++k) {
    const double e = std::abs(M[k] - H[k]);
    squares += e * e;
    fit.MAXERR = larger(fit.MAXERR, e);
  }
  fit.RMSERR = larger(fit.RMSERR, std::sqrt(squares / NS));
}

PhaseFit HPHASEFIT(int DCTYPE, const RealMatrix* HDC, bool SVDFLAG) {
  const FrequencyGrid& G = SOLVEDATA.grid;
  return HPHASEFIT({G.NFUSE, G.WFREQ, G.WFIT, SOLVEDATA.second.HST, FITTED.H}, DCTYPE, HDC,
                   SVDFLAG);
}

PhaseFit HPHASEFIT(const PhaseSamples& Q, int DCTYPE, const RealMatrix* HDC, bool SVDFLAG) {
  PhaseFit fit{};
  const Problem p = layProblem(Q, DCTYPE);
  formBasis(p);
  fillMatrix(p);
  fillRightSides(p, HDC);
  solve(p, SVDFLAG);
  takeElements(p, HDC, fit);
  GroupInts leaders;
  fit.RATIO = POLERATIO(leaders);
  if (SVDFLAG) dropPolesWithoutResidue();
  return fit;
}

double POLERATIO(GroupInts& LEADER) {
  const int n = FITMODEL.NC;
  double RATIO = 0;
  for (int g = 1; g <= FITMODEL.NGROUP; ++g) {
    LEADER[g] = 0;
    for (int m = 1; m <= FITMODEL.NH[g]; ++m) {
      const Complex P = FITMODEL.HPOLE[g][m];
      if (P.imag() != 0) continue;
      for (int i = 0; i < n * n; ++i) {
        const Complex R = FITMODEL.HRES[g](i / n + 1, i % n + 1)[m];
        if (std::norm(R) < squareBelow(RATIOMARGIN * RATIO * P.real())) continue;
        const double q = std::abs(R / P);
        if (!(q > RATIOMARGIN * RATIO)) continue;
        RATIO = q;
        LEADER[g] = m;
      }
    }
  }
  return RATIO;
}

void REMOVEPOLE(int g, int m) {
  PoleTable& P = FITMODEL.HPOLE[g];
  int& NH = FITMODEL.NH[g];
  std::copy(P.data() + m, P.data() + NH, P.data() + m - 1);
  --NH;
}

} // namespace lcp

// Each mode of each frequency takes a few Newton steps, whose systems differ only in l and x. With
// A = Q H Q^H formed once per frequency, the unknowns q = Q^H d(1..n) and d(n+1) solve
//
//   | H - l I    -Q^H x |   | q      |   | Q^H r  |
//   |                   |   |        | = |        |
//   | row p of Q    0   |   | d(n+1) |   | r(n+1) |
//
// Only three rows take part in the elimination of column k: row k, row k + 1 and the border. The
// largest of their elements is the pivot; the other two rows stay. The matrix is the original one
// multiplied by unitary matrices, and so it is equally close to singular. The lanes differ only in
// their pivot rows: exchanging rows lane by lane brings the pivots to the same place.
#include "kernels/bordered_system.h"

#include "kernels/hyperbolic.h"
#include "kernels/inversion.h"
#include "kernels/lapack.h"
#include "kernels/matrix_kernels.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <limits>

namespace lcp {

namespace {

// The check of the full elimination fails when the rounding errors in the n^2 elements of J R,
// where R is the inverse of J, add up to 0.1. Each error is about eps |J| |R|. A system that comes
// within two decades of this limit is solved in full.
constexpr double ROUNDINGLIMIT = 1e-3;

// A row of the reduced systems, followed by its right-hand sides: those of the step and of the
// probe.
struct Row {
  ComplexLanes elements[BORDERED + 2];

  ComplexLanes& operator[](int j) { return elements[j - 1]; }
  const ComplexLanes& operator[](int j) const { return elements[j - 1]; }
};

// Row i of H - l I with its right-hand sides. The zeros left of the subdiagonal are never read.
void fillRow(Row& row, const BorderedMatrix& M, const ComplexLanes& l, const LaneVectors& xq,
             const LaneVectors& rq, int i) {
  const int n = M.n;
  for (int j = std::max(i - 1, 1); j <= n; ++j) row[j].fill(M.H[i - 1][j - 1]);
  row[i] = row[i] - l;
  row[n + 1] = -xq[i];
  row[n + 2] = rq[i];
  row[n + 3].fill(M.probe[i]);
}

void fillBorder(Row& border, const BorderedMatrix& M, const BorderedSystems& S) {
  const int n = M.n;
  for (int j = 1; j <= n; ++j) {
    for (int c = 0; c < LANES; ++c) border[j].set(c, M.Q(S.p[c], j));
  }
  border[n + 1].fill(0.0);
  border[n + 2] = S.r[n + 1];
  border[n + 3].fill(M.probe[n + 1]);
}

// Eliminates column k from the rows below, up to column m. The largest element of the column
// becomes the pivot and is replaced by its reciprocal.
template <int B> void eliminateColumn(Row& row, Row* const (&below)[B], int k, int m) {
  ComplexLanes factor[B];
  LaneChoice larger[B];
  ComplexLanes pivot = row[k];
  for (int b = 0; b < B; ++b) {
    factor[b] = (*below[b])[k];
    const ComplexLanes size = magnitudes(factor[b]), best = magnitudes(pivot);
    larger[b] = size.re + size.im > best.re + best.im;
    exchange(pivot, factor[b], larger[b]);
  }
  row[k] = reciprocal(pivot);
  for (ComplexLanes& f : factor) f = f * row[k];
  for (int j = k + 1; j <= m; ++j) {
    ComplexLanes u = row[j], v[B];
    for (int b = 0; b < B; ++b) {
      v[b] = (*below[b])[j];
      exchange(u, v[b], larger[b]);
    }
    row[j] = u;
    for (int b = 0; b < B; ++b) (*below[b])[j] = v[b] - factor[b] * u;
  }
}

// Back substitution for both right-hand sides.
void substitute(LaneVectors& step, LaneVectors& probe, const Row* rows, int n) {
  for (int k = n + 1; k >= 1; --k) {
    const Row& u = rows[k - 1];
    SumOfProducts s, p;
    for (int j = k + 1; j <= n + 1; ++j) {
      s.add(u[j], step[j]);
      p.add(u[j], probe[j]);
    }
    step[k] = (u[n + 2] - s.total()) * u[k];
    probe[k] = (u[n + 3] - p.total()) * u[k];
  }
}

// Solves the reduced systems for the step and for the probe.
LCP_WIDTHS("avx2")
void solveReduced(LaneVectors& q, LaneVectors& probe, const BorderedMatrix& M,
                  const BorderedSystems& S, const LaneVectors& xq, const LaneVectors& rq) {
  static Row rows[BORDERED];
  const int n = M.n;
  Row& border = rows[n];
  fillBorder(border, M, S);
  fillRow(rows[0], M, S.l, xq, rq, 1);
  for (int k = 1; k < n; ++k) {
    fillRow(rows[k], M, S.l, xq, rq, k + 1);
    eliminateColumn<2>(rows[k - 1], {&rows[k], &border}, k, n + 3);
  }
  eliminateColumn<1>(rows[n - 1], {&border}, n, n + 3);
  border[n + 1] = reciprocal(border[n + 1]);
  substitute(q, probe, rows, n);
}

// The length of the inverse times a probe vector of patternless elements of modulus 1 is usually
// within a decade of the norm of the inverse. Also false for NaN.
bool farFromSingular(const BorderedMatrix& M, double square) {
  constexpr double eps = std::numeric_limits<double>::epsilon();
  const double order = M.n + 1;
  return eps * order * order * M.largest * std::sqrt(square) < ROUNDINGLIMIT;
}

// Solves the system of lane c by full elimination.
bool solveInFull(LaneVectors& d, const BorderedMatrix& M, const BorderedSystems& S, int c) {
  static SquareStore<Complex, BORDERED> J;
  static Table<Complex, BORDERED> r, x;
  const int border = M.n + 1;
  for (int j = 1; j <= M.n; ++j) {
    for (int i = 1; i <= M.n; ++i) J(i, j) = M.A(i, j);
    J(j, j) -= S.l.lane(c);
    J(j, border) = -S.x[j].lane(c);
    J(border, j) = 0.0;
  }
  J(border, border) = 0.0;
  J(border, S.p[c]) = 1.0;
  S.r.getLane(c, r.data(), border);
  if (!SOLVEJD(x.data(), J, r.data(), border)) return false;
  d.setLane(c, x.data(), border);
  return true;
}

} // namespace

void reduce(BorderedMatrix& M, CConstView A, int n) {
  static LineMatrix H, QH;
  M.n = n;
  M.largest = 1.0;
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) {
      H(i, j) = M.A(i, j) = A(i, j);
      M.largest = std::max(M.largest, L1MAG(A(i, j)));
    }
  }
  for (int i = 1; i <= n + 1; ++i) M.probe[i] = std::polar(1.0, static_cast<double>(i) * i);
  ZGEHRD(H, M.Q, n);
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) {
      QH(i, j) = std::conj(M.Q(j, i));
      M.H[i - 1][j - 1] = H(i, j);
    }
  }
  prepare(M.fromReduced, M.Q, n);
  prepare(M.toReduced, QH, n);
}

void SOLVEBORDERED(LaneVectors& d, bool (&solved)[LANES], const BorderedMatrix& M,
                   const BorderedSystems& S) {
  static LaneVectors xq, rq, q, probe;
  double squares[LANES];
  multiply(xq, M.toReduced, S.x);
  multiply(rq, M.toReduced, S.r);
  solveReduced(q, probe, M, S, xq, rq);
  sumOfSquares(squares, probe, M.n + 1);
  multiply(d, M.fromReduced, q);
  d[M.n + 1] = q[M.n + 1];
  for (int c = 0; c < LANES; ++c) {
    if (!S.used[c]) continue;
    solved[c] = farFromSingular(M, squares[c]) || solveInFull(d, M, S, c);
  }
}

} // namespace lcp

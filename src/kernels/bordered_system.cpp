// Each mode of each frequency takes a few Newton steps, which differ in l and x alone. With
// A = Q H Q^H formed once a frequency, the unknowns q = Q^H d(1..n) and d(n+1) solve
//
//   | H - l I    -Q^H x |   | q      |   | Q^H r  |
//   |                   |   |        | = |        |
//   | row p of Q    0   |   | d(n+1) |   | r(n+1) |
//
// Of column k only three rows take part in the elimination: the one at hand, row k + 1, and the
// border. The largest of their elements is the pivot, the other two rows go on. The matrix is that
// of the original system times unitary ones, and so is as near to singular.
#include "kernels/bordered_system.h"

#include "kernels/hyperbolic.h"
#include "kernels/inversion.h"
#include "kernels/lapack.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <limits>
#include <utility>

namespace lcp {

namespace {

// The check of the full elimination fails when the rounding errors in the n^2 elements of J R, R
// the inverse of J, add up to 0.1. They are about eps |J| |R| each. A system for which this comes
// within two decades of the limit is handed over.
constexpr double ROUNDINGLIMIT = 1e-3;

// A row of the reduced system with its right sides behind it, those of the step and of the probe;
// real and imaginary parts apart.
struct Row {
  double re[BORDERED + 2];
  double im[BORDERED + 2];

  Complex operator()(int j) const { return {re[j - 1], im[j - 1]}; }
  void set(int j, Complex z) {
    re[j - 1] = z.real();
    im[j - 1] = z.imag();
  }
};

struct Rows {
  Row store[BORDERED];
  Table<Row*, BORDERED> order; // as the pivots order them
};

void fillRows(Rows& R, const BorderedMatrix& M, Complex l, const Complex* x, int p,
              const BorderedVector& r) {
  const int n = M.n;
  ModeComplex xq, rq;
  multiply(xq.data(), M.toReduced, x);
  multiply(rq.data(), M.toReduced, r.data());
  for (int i = 1; i <= n + 1; ++i) R.order[i] = &R.store[i - 1];
  for (int i = 1; i <= n; ++i) {
    Row& row = *R.order[i];
    const int before = std::max(i - 2, 0); // zeros of H on the left
    std::copy(M.Hre[i - 1] + before, M.Hre[i - 1] + n, row.re + before);
    std::copy(M.Him[i - 1] + before, M.Him[i - 1] + n, row.im + before);
    row.set(i, row(i) - l);
    row.set(n + 1, -xq[i]);
    row.set(n + 2, rq[i]);
    row.set(n + 3, M.probe[i]);
  }
  Row& border = *R.order[n + 1];
  for (int j = 1; j <= n; ++j) border.set(j, M.Q(p, j));
  border.set(n + 1, 0.0);
  border.set(n + 2, r[n + 1]);
  border.set(n + 3, M.probe[n + 1]);
}

// v = v - f u in the columns from k to m.
void subtract(Row& v, const Row& u, Complex f, int k, int m) {
  double* __restrict vre = v.re;
  double* __restrict vim = v.im;
  const double re = f.real(), im = f.imag();
  for (int j = k - 1; j < m; ++j) {
    vre[j] -= u.re[j] * re - u.im[j] * im;
    vim[j] -= u.re[j] * im + u.im[j] * re;
  }
}

// Brings the row with the larger element in column k to the place k.
void choosePivot(Rows& R, int k, int other) {
  if (L1MAG((*R.order[other])(k)) > L1MAG((*R.order[k])(k))) std::swap(R.order[other], R.order[k]);
}

// Upper triangular form, the reciprocals of the pivots on its diagonal.
void eliminate(Rows& R, int n) {
  for (int k = 1; k <= n + 1; ++k) {
    if (k < n) choosePivot(R, k, k + 1);
    if (k <= n) choosePivot(R, k, n + 1);
    Row& u = *R.order[k];
    const Complex inverse = 1.0 / u(k);
    u.set(k, inverse);
    if (k < n) subtract(*R.order[k + 1], u, (*R.order[k + 1])(k)*inverse, k + 1, n + 3);
    if (k <= n) subtract(*R.order[n + 1], u, (*R.order[n + 1])(k)*inverse, k + 1, n + 3);
  }
}

// Solves the triangular form for the right side in a column.
void substitute(BorderedVector& q, const Rows& R, int column, int n) {
  double qre[BORDERED], qim[BORDERED];
  for (int k = n + 1; k >= 1; --k) {
    const Row& u = *R.order[k];
    double rere = 0.0, imim = 0.0, reim = 0.0, imre = 0.0;
    for (int j = k; j <= n; ++j) {
      rere += u.re[j] * qre[j];
      imim += u.im[j] * qim[j];
      reim += u.re[j] * qim[j];
      imre += u.im[j] * qre[j];
    }
    q[k] = (u(column) - Complex(rere - imim, reim + imre)) * u(k);
    qre[k - 1] = q[k].real();
    qim[k - 1] = q[k].imag();
  }
}

// The length of the inverse times a vector of elements of modulus 1 without pattern is as a rule
// within a decade of the norm of the inverse. False also for NaN.
bool farFromSingular(const Rows& R, const BorderedMatrix& M) {
  constexpr double eps = std::numeric_limits<double>::epsilon();
  BorderedVector q;
  substitute(q, R, M.n + 3, M.n);
  double square = 0.0;
  for (int i = 1; i <= M.n + 1; ++i) square += std::norm(q[i]);
  const double order = M.n + 1;
  return eps * order * order * M.largest * std::sqrt(square) < ROUNDINGLIMIT;
}

bool solveInFull(BorderedVector& d, const BorderedMatrix& M, Complex l, const Complex* x, int p,
                 const BorderedVector& r) {
  static SquareStore<Complex, BORDERED> J;
  const int border = M.n + 1;
  for (int j = 1; j <= M.n; ++j) {
    for (int i = 1; i <= M.n; ++i) J(i, j) = M.A(i, j);
    J(j, j) -= l;
    J(j, border) = -x[j - 1];
    J(border, j) = 0.0;
  }
  J(border, border) = 0.0;
  J(border, p) = 1.0;
  return SOLVEJD(d.data(), J, r.data(), border);
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
      M.Hre[i - 1][j - 1] = H(i, j).real();
      M.Him[i - 1][j - 1] = H(i, j).imag();
    }
  }
  prepare(M.fromReduced, M.Q, n);
  prepare(M.toReduced, QH, n);
}

bool SOLVEBORDERED(BorderedVector& d, const BorderedMatrix& M, Complex l, const Complex* x, int p,
                   const BorderedVector& r) {
  static Rows R;
  fillRows(R, M, l, x, p, r);
  eliminate(R, M.n);
  if (!farFromSingular(R, M)) return solveInFull(d, M, l, x, p, r);
  BorderedVector q;
  substitute(q, R, M.n + 2, M.n);
  multiply(d.data(), M.fromReduced, q.data());
  d[M.n + 1] = q[M.n + 1];
  return true;
}

} // namespace lcp

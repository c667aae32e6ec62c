// Bundles and ground wires by matrix reduction.
//
// Sub-conductor k of the bundle of r has the voltage of r, and their currents add. With k written
// as its difference from r, its row and column become row k - row r and column k - column r, and
// its voltage 0. A ground wire has the voltage 0 as it stands. Every unknown of voltage 0 goes by a
// step of Gaussian elimination (Kron reduction):
//
//   M(i, j) = M(i, j) - M(i, q) M(q, j) / M(q, q)
//
// M is symmetric, so the elimination works on the lower triangle, column by column.
#include "overhead/bundle_reduction.h"

#include "store/rundata.h"

namespace lcp {

namespace {

// Column q of a step, as it stands and times j, both as plain reals: the product with a complex
// factor is then two sums over reals, without the exchange of parts that keeps it from vectors.
struct EliminationColumn {
  double plain[2 * MAXCOND];
  double turned[2 * MAXCOND];
};

// Elements i to n of column i minus t times the elements i to n of the eliminated column.
void subtract(Complex* column, const EliminationColumn& e, Complex t, int i, int n) {
  double* m = reinterpret_cast<double*>(column);
  const double re = t.real();
  const double im = t.imag();
  for (int k = 2 * (i - 1); k < 2 * n; ++k) m[k] -= re * e.plain[k] + im * e.turned[k];
}

void eliminate(CView M, int q) {
  EliminationColumn e;
  for (int i = 1; i < q; ++i) {
    const Complex m = M(q, i);
    e.plain[2 * i - 2] = m.real();
    e.plain[2 * i - 1] = m.imag();
    e.turned[2 * i - 2] = -m.imag();
    e.turned[2 * i - 1] = m.real();
  }
  const Complex v = 1.0 / M(q, q);
  for (int i = 1; i < q; ++i) subtract(M.column(i), e, M(q, i) * v, i, q - 1);
}

// The same step over both triangles. Column q above the diagonal keeps its multiples 1 / M(q, q).
void eliminateWhole(CView M, int q) {
  const Complex v = 1.0 / M(q, q);
  for (int i = 1; i < q; ++i) {
    const Complex t = M(i, q) * v;
    M(i, q) = t;
    M(i, i) -= t * M(q, i);
    for (int j = i + 1; j < q; ++j) M(j, i) = M(i, j) -= t * M(q, j);
  }
}

void mirror(CView M, int n) {
  for (int j = 1; j <= n; ++j) {
    for (int i = j + 1; i <= n; ++i) M(j, i) = M(i, j);
  }
}

} // namespace

void foldMember(CView M, int n, int k, int r) {
  for (int i = 1; i <= n; ++i) M(i, k) -= M(i, r);
  for (int j = 1; j <= n; ++j) M(k, j) -= M(r, j);
}

void CBKRON(CView M, int kept, int n) {
  for (int q = n; q > kept; --q) eliminate(M, q);
  if (kept < n) mirror(M, kept);
}

int leadingKept(int n) {
  const CondInts& role = RUNDATA.cond.CMAP;
  for (int i = 1; i <= n; ++i) {
    if (role[i] != MAPMAIN && role[i] != MAPKEPT) return i - 1;
  }
  return n;
}

void BUNDRED(CView M, int n) {
  const CondInts& role = RUNDATA.cond.CMAP;
  for (int k = 1; k <= n; ++k) {
    if (role[k] > 0) foldMember(M, n, k, role[k]);
  }
  const int kept = leadingKept(n);
  if (kept >= RUNDATA.line.NC) {
    CBKRON(M, kept, n);
    return;
  }
  for (int q = n; q > kept; --q) eliminateWhole(M, q);
}

// Sweep on pivot k: with d = 1 / M(k, k), M(i, j) - M(i, k) d M(k, j) elsewhere, M(i, k) d in row
// and column k, -d on the diagonal. After every pivot has had its turn M is minus its inverse.
void SYMINV(CView M, int n) {
  for (int k = 1; k <= n; ++k) {
    const Complex d = 1.0 / M(k, k);
    for (int j = 1; j <= n; ++j) {
      if (j == k) continue;
      const Complex t = M(k, j) * d;
      for (int i = j; i <= n; ++i) {
        if (i != k) M(i, j) = M(j, i) = M(i, j) - M(k, i) * t;
      }
    }
    for (int i = 1; i <= n; ++i) M(i, k) = M(k, i) = M(k, i) * d;
    M(k, k) = -d;
  }
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) M(i, j) = -M(i, j);
  }
}

} // namespace lcp

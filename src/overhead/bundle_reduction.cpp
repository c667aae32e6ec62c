// Reduction of bundles and ground wires.
//
// Sub-conductor k of the bundle of r has the voltage of r, and their currents add. Writing the
// voltage of k as its difference from that of r turns row and column k into row k - row r and
// column k - column r, and makes the voltage 0. A ground wire has voltage 0 from the start. Each
// unknown of voltage 0 is eliminated by a step of Gaussian elimination (Kron reduction):
//
//   M(i, j) = M(i, j) - M(i, q) M(q, j) / M(q, q)
//
// M is symmetric, so the elimination works on the lower triangle, column by column.
#include "overhead/bundle_reduction.h"

#include "store/rundata.h"

namespace lcp {

namespace {

// Column q of a step, and the same times j, both as real numbers. The product with a complex factor
// is then two real sums, which the compiler can vectorise since no parts are exchanged.
struct EliminationColumn {
  double plain[2 * MAXCOND];
  double turned[2 * MAXCOND];
};

// Subtracts t times elements i to n of the eliminated column from elements i to n of column i.
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

// The same step on both triangles. Column q above the diagonal is left multiplied by 1 / M(q, q).
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

// Sweep on pivot k: with d = 1 / M(k, k), M(i, j) becomes M(i, j) - M(i, k) d M(k, j), row and
// column k become M(i, k) d, and the diagonal element becomes -d. After all pivots M is minus its
// inverse.
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

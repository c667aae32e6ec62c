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

#include "base/register_widths.h"
#include "store/rundata.h"

namespace lcp {

namespace {

// Row q of a step up to its diagonal, as it stands and times j, both as plain reals: the product
// with a complex factor is then two sums over reals, without the exchange of parts that keeps it
// from vectors. And the factors M(q, i) / M(q, q) of the columns.
struct EliminationRow {
  double plain[2 * MAXCOND];
  double turned[2 * MAXCOND];
  Complex factor[MAXCOND];
};

// Steps that share a sweep over the matrix, which does not stay in the cache.
constexpr int STEPS = 4;
EliminationRow rows[STEPS];

// Elements first to last of column i minus those of the rows times the factors of the column, row
// by row: each element as if the steps were taken one after the other.
template <int C> void subtract(Complex* column, int i, int first, int last) {
  double* m = reinterpret_cast<double*>(column);
  double re[C], im[C];
  for (int s = 0; s < C; ++s) {
    re[s] = rows[s].factor[i - 1].real();
    im[s] = rows[s].factor[i - 1].imag();
  }
  for (int k = 2 * (first - 1); k < 2 * last; ++k) {
    double x = m[k];
    for (int s = 0; s < C; ++s) x -= re[s] * rows[s].plain[k] + im[s] * rows[s].turned[k];
    m[k] = x;
  }
}

void takeRow(EliminationRow& e, CView M, int q) {
  const Complex v = 1.0 / M(q, q);
  for (int i = 1; i < q; ++i) {
    const Complex m = M(q, i);
    e.plain[2 * i - 2] = m.real();
    e.plain[2 * i - 1] = m.imag();
    e.turned[2 * i - 2] = -m.imag();
    e.turned[2 * i - 1] = m.real();
    e.factor[i - 1] = m * v;
  }
}

LCP_WIDTHS("avx2") void eliminateOne(CView M, int q) {
  takeRow(rows[0], M, q);
  for (int i = 1; i < q; ++i) subtract<1>(M.column(i), i, i, q - 1);
}

// The steps q, q - 1 and so on. Each row is brought up to date by the steps before it.
LCP_WIDTHS("avx2") void eliminateTogether(CView M, int q) {
  const int last = q - STEPS;
  for (int s = 0; s < STEPS; ++s) {
    const int r = q - s;
    for (int i = 1; i <= r && s > 0; ++i) {
      if (s == 1) subtract<1>(M.column(i), i, r, r);
      if (s == 2) subtract<2>(M.column(i), i, r, r);
      if (s == 3) subtract<3>(M.column(i), i, r, r);
    }
    takeRow(rows[s], M, r);
  }
  for (int i = 1; i <= last; ++i) subtract<STEPS>(M.column(i), i, i, last);
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
  int q = n;
  for (; q - STEPS >= kept; q -= STEPS) eliminateTogether(M, q);
  for (; q > kept; --q) eliminateOne(M, q);
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

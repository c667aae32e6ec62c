// Gauss-Jordan elimination with full pivoting, in place. Each of the n steps brings the largest
// element a(r,c) of the unused rows and columns to the diagonal by exchanging rows r and c. Then,
// with p = 1 / a(c,c) and d the rest of column c,
//
//   row c = p row c, with a(c,c) replaced by 1
//   row l = row l - d(l) row c for l /= c, with d(l) replaced by 0
//
// Exchanging the columns in reverse order undoes the row exchanges and leaves the inverse R.
//
// Check: e = sum over all i, j of |(A R)(i,j)| - n, which is 0 for an exact inverse. It measures
// the rounding of the largest elements of R and reaches 0.1 at condition numbers between 1e10
// (order 50) and 1e15 (order 4).
#include "kernels/inversion.h"

#include "base/console.h"
#include "base/stop.h"
#include "kernels/lane_vectors.h"
#include "kernels/matrix_kernels.h"

#include <algorithm>
#include <cmath>
#include <complex>

namespace lcp {

namespace {

constexpr double SINGULARINVERSE = 1e-50; // a pivot up to this ends the run
constexpr double SINGULARSOLVE = 1e-20;   // ... makes a system singular
constexpr double CHECKLIMIT = 0.1;        // excess of |A R| over n above which R is rejected
constexpr double NEARLIMIT = 1e-6;        // this close to the limit, the moduli are summed exactly

// Elements whose squared modulus is within this of the largest are compared again by modulus:
// moduli that round to the same number have squares that differ by at most a few units in the last
// place.
constexpr double SAMEMODULUS = 1.0 - 1e-14;

struct Bookkeeping {
  Table<bool, MAXINV> used; // row and column have held a pivot
  Table<int, MAXINV> INDXR; // row in which the pivot of a step was found
  Table<int, MAXINV> INDXC; // its column
};

struct Pivot {
  int row = 0;
  int column = 0;
};

// Largest squared modulus of each row over the unused columns; -1 if all are NaN.
LCP_WIDTHS("avx2") void rowMaxima(double* largest, CConstView R, const Bookkeeping& B, int n) {
  std::fill_n(largest, n, -1.0);
  for (int k = 1; k <= n; ++k) {
    if (B.used[k]) continue;
    const double* z = reinterpret_cast<const double*>(R.column(k));
    for (int i = 0; i < n; ++i) {
      const double square = z[2 * i] * z[2 * i] + z[2 * i + 1] * z[2 * i + 1];
      largest[i] = square > largest[i] ? square : largest[i];
    }
  }
}

// The element of largest modulus in the unused rows and columns, searched row by row; among equal
// ones the last. Row 0 if all are NaN.
Pivot findPivot(CConstView R, const Bookkeeping& B, int n) {
  Table<double, MAXINV> largest;
  rowMaxima(largest.data(), R, B, n);
  double top = -1.0;
  for (int j = 1; j <= n; ++j) {
    if (!B.used[j]) top = std::max(top, largest[j]);
  }
  const double near = top * SAMEMODULUS;
  Pivot pivot;
  double best = 0.0;
  for (int j = 1; top >= 0.0 && j <= n; ++j) {
    if (B.used[j] || largest[j] < near) continue;
    for (int k = 1; k <= n; ++k) {
      if (B.used[k] || !(std::norm(R(j, k)) >= near)) continue;
      const double modulus = std::abs(R(j, k));
      if (modulus < best) continue;
      best = modulus;
      pivot = {j, k};
    }
  }
  return pivot;
}

void swapRows(CView R, int a, int b, int n) {
  if (a == b) return;
  for (int k = 1; k <= n; ++k) std::swap(R(a, k), R(b, k));
}

// One elimination step with the pivot on the diagonal in column c. The complex update of a column,
// z - q d with z and d as sequences of real and imaginary parts, is
//
//   z - (d Re q + (j d) Im q)
//
// which takes two real multiples without exchanging parts and rounds like the complex product.
LCP_WIDTHS("avx2") void eliminate(CView R, int c, int n) {
  alignas(64) double d[2 * MAXINV]; // column c without the pivot
  alignas(64) double jd[2 * MAXINV];
  const Complex p = 1.0 / R(c, c);
  R(c, c) = 0.0;
  for (int l = 1; l <= n; ++l) {
    const Complex z = R(l, c);
    d[2 * l - 2] = z.real();
    d[2 * l - 1] = z.imag();
    jd[2 * l - 2] = -z.imag();
    jd[2 * l - 1] = z.real();
    R(l, c) = 0.0;
  }
  R(c, c) = 1.0;
  for (int k = 1; k <= n; ++k) {
    const Complex q = R(c, k) *= p;
    const double re = q.real(), im = q.imag();
    double* z = reinterpret_cast<double*>(R.column(k));
    for (int i = 0; i < 2 * n; ++i) z[i] -= d[i] * re + jd[i] * im;
  }
}

enum class Sweep { Done, SmallPivot, OnlyNaN };

// Replaces R by its inverse, as long as the modulus of every pivot exceeds the limit.
Sweep invertInPlace(CView R, int n, double limit) {
  static Bookkeeping B;
  B.used.fill(false);
  for (int i = 1; i <= n; ++i) {
    const Pivot pivot = findPivot(R, B, n);
    if (pivot.row == 0) return Sweep::OnlyNaN;
    B.used[pivot.column] = true;
    B.INDXR[i] = pivot.row;
    B.INDXC[i] = pivot.column;
    swapRows(R, pivot.row, pivot.column, n);
    if (std::abs(R(pivot.column, pivot.column)) <= limit) return Sweep::SmallPivot;
    eliminate(R, pivot.column, n);
  }
  for (int l = n; l >= 1; --l) {
    if (B.INDXR[l] != B.INDXC[l])
      std::swap_ranges(R.column(B.INDXR[l]), R.column(B.INDXR[l]) + n, R.column(B.INDXC[l]));
  }
  return Sweep::Done;
}

// |A R| summed over all elements, minus n. The quick sum is right to rounding, and exceeds every
// limit if squares overflow or underflow.
enum class Moduli { Quick, Exact };

double excess(const LeftFactor& A, CConstView R, int n, Moduli moduli) {
  static LaneVectors x, y;
  double sum = 0.0, quick[LANES];
  for (int j = 1; j <= n; j += LANES) {
    const int count = std::min(LANES, n + 1 - j);
    takeColumns(x, R, j, count, n);
    multiply(y, A, x);
    sumOfModuli(quick, y, n);
    for (int c = 0; c < count; ++c) {
      if (moduli == Moduli::Quick) sum += quick[c];
      for (int i = 1; moduli == Moduli::Exact && i <= n; ++i) sum += std::abs(y[i].lane(c));
    }
  }
  return sum - n;
}

bool isInverse(const LeftFactor& A, CConstView R, int n) {
  const double quick = excess(A, R, n, Moduli::Quick);
  if (std::fabs(quick - CHECKLIMIT) > NEARLIMIT) return quick < CHECKLIMIT;
  return excess(A, R, n, Moduli::Exact) < CHECKLIMIT;
}

[[noreturn]] void stopSingular() {
  console::line(" ");
  console::rule('*', console::STARS);
  console::line("Corvo.exe: ERROR");
  console::line("Error in INVCJD. Singularity occurs");
  console::line("Verify Transmission line data");
  console::rule('*', console::STARS);
  console::line("QUENT Ending!");
  stop(1);
}

// Returns false if an element is NaN.
bool invert(CView R, CConstView A, int n) {
  if (R.first != A.first) copyCorner(R, A, n);
  const Sweep sweep = invertInPlace(R, n, SINGULARINVERSE);
  if (sweep == Sweep::SmallPivot) stopSingular();
  return sweep == Sweep::Done;
}

} // namespace

void INVCJD(CView R, CConstView A, int n) { invert(R, A, n); }

bool INVCHECKED(CView R, CConstView A, int n) {
  static LeftFactor original;
  prepare(original, A, n);
  return invert(R, A, n) && isInverse(original, R, n);
}

bool SOLVEJD(Complex* x, CConstView A, const Complex* b, int n) {
  static LeftFactor original;
  static SquareStore<Complex, MAXINV> store;
  const CView R(store.elements, n);
  prepare(original, A, n);
  copyCorner(R, A, n);
  if (invertInPlace(R, n, SINGULARSOLVE) != Sweep::Done) return false;
  multiply(x, R, b, n);
  return isInverse(original, R, n);
}

} // namespace lcp

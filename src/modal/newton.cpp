// For an eigenvalue l and vector x of A, with element p of x held at 1, the residual is
//
//   r(i)   = sum over j of A(i,j) x(j) - l x(i),  i = 1..n
//   r(n+1) = x(p) - 1
//
// Newton's step d solves J d = r, x and l then change by -d:
//
//       | A - l I   -x |
//   J = |              |        e_p the row with 1 in column p
//       |  e_p       0 |
//
// J is regular at a simple eigenvalue, though A - l I is not. A step that would move an element of
// x by more than 0.025, or l by more than 5 %, is shortened as a whole, so that a mode cannot jump
// to a neighbour. Where J is singular l alone is moved, by 1 %.
#include "modal/newton.h"

#include "kernels/bordered_system.h"
#include "kernels/hyperbolic.h"

#include <algorithm>
#include <cmath>
#include <complex>

namespace lcp {

namespace {

constexpr double CONVERGED = 1e-8;   // sum of the residuals of a solved mode
constexpr double VECTORSTEP = 0.025; // largest change of a vector element
constexpr double EIGENSTEP = 0.05;   // largest relative change of an eigenvalue
constexpr double RECOVERY = 1.01;    // change of an eigenvalue at a singular Jacobian
constexpr double UNLIMITED = 1e30;   // no step is longer than its limit times this

// The eigenvalue problem of one frequency, and the mode that is being followed.
struct Follower {
  BorderedMatrix M; // the scaled matrix, for the Newton steps
  LeftFactor A;     // ... and for the residuals
  int p;            // element of the vector that is held at 1
  Complex l;        // eigenvalue, scaled
  ModeComplex x;    // vector
  BorderedVector r; // residual
};

double scaleByDiagonal(CView A, int n) {
  double sum = 0.0;
  for (int i = 1; i <= n; ++i) sum += std::abs(A(i, i));
  const double s = sum / n;
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) A(i, j) /= s;
  }
  return s;
}

// Fills r and returns its measure, the sum of the moduli.
double residual(Follower& F) {
  const int n = F.M.n;
  multiply(F.r.data(), F.A, F.x.data());
  double e = 0.0;
  for (int i = 1; i <= n; ++i) {
    F.r[i] -= F.l * F.x[i];
    e += std::abs(F.r[i]);
  }
  F.r[n + 1] = F.x[F.p] - 1.0;
  return e + std::abs(F.r[n + 1]);
}

// The part of the step d that is taken, 1 unless an element or the eigenvalue would move too far.
double stepFactor(const BorderedVector& d, Complex l, int n) {
  bool limited = false;
  double t = UNLIMITED;
  for (int i = 1; i <= n; ++i) {
    const double length = std::abs(d[i]);
    if (!(length > VECTORSTEP)) continue;
    limited = true;
    t = std::min(t, VECTORSTEP / length);
  }
  const double length = std::abs(d[n + 1]);
  if (length > EIGENSTEP * std::abs(l)) {
    limited = true;
    t = std::min(t, EIGENSTEP * std::abs(l / d[n + 1]));
  }
  return limited ? t : 1.0;
}

// One update of mode k: the eigenvalue, and the vector in column k of TI.
void update(Follower& F, Complex& LSTEP, CView TI, int k) {
  const int n = F.M.n;
  BorderedVector d;
  if (!SOLVEBORDERED(d, F.M, F.l, F.x.data(), F.p, F.r)) {
    // An eigenvalue that was never stepped is taken from the guess: 1 % of 0 would lead nowhere.
    F.l = LSTEP = RECOVERY * (LSTEP == 0.0 ? F.l : LSTEP);
    return;
  }
  const double a = stepFactor(d, F.l, n);
  F.l = LSTEP = F.l - a * d[n + 1];
  for (int i = 1; i <= n; ++i) F.x[i] -= a * d[i];
  std::copy_n(F.x.data(), n, TI.column(k));
}

void negateMode(CView TI, CView TIINV, int k, int n) {
  for (int i = 1; i <= n; ++i) {
    TI(i, k) = -TI(i, k);
    TIINV(k, i) = -TIINV(k, i);
  }
}

void swapModes(CView TI, CView TIINV, ModeComplex& EIG, int a, int b, int n) {
  std::swap(EIG[a], EIG[b]);
  for (int i = 1; i <= n; ++i) {
    std::swap(TI(i, a), TI(i, b));
    std::swap(TIINV(a, i), TIINV(b, i));
  }
}

} // namespace

bool NREIG(ModeComplex& EIG, CView TI, const ModeComplex& LGUESS, CConstView XGUESS, CView A,
           double& s, const ModeInts& PIVOT, int n) {
  static Follower F;
  FirstLoopStore& first = SOLVEDATA.first;
  bool ok = true;
  s = scaleByDiagonal(A, n);
  reduce(F.M, A, n);
  prepare(F.A, A, n);
  for (int k = 1; k <= n; ++k) {
    F.p = PIVOT[k];
    F.l = LGUESS[k];
    std::copy_n(XGUESS.column(k), n, F.x.data());
    int count = 0;
    double e = residual(F);
    while (!(e <= CONVERGED) && count < MAXNEWTON) {
      ++count;
      update(F, first.LSTEP[k], TI, k);
      EIG[k] = s * F.l;
      e = residual(F);
    }
    const bool converged = e <= CONVERGED;
    first.NRITER[k] = converged ? std::max(count, 1) : MAXNEWTON + 1;
    ok = ok && converged;
  }
  return ok;
}

void MTRACK(CView TI, CView TIINV, CConstView V, ModeComplex& EIG, int n) {
  for (int k = 1; k <= n; ++k) {
    double best = 1e30;
    int sel = k;
    bool flip = false;
    for (int c = k; c <= n; ++c) {
      double same = 0.0, opposite = 0.0;
      for (int i = 1; i <= n; ++i) {
        same += L1MAG(TI(i, c) - V(i, k));
        opposite += L1MAG(TI(i, c) + V(i, k));
      }
      if (!(same < best || opposite < best)) continue;
      sel = c;
      flip = opposite < same;
      best = flip ? opposite : same;
    }
    if (sel != k) swapModes(TI, TIINV, EIG, k, sel, n);
    if (flip) negateMode(TI, TIINV, k, n);
  }
}

} // namespace lcp

// For an eigenvalue l and eigenvector x of A, with element p of x fixed at 1, the residual is
//
//   r(i)   = sum over j of A(i,j) x(j) - l x(i),  i = 1..n
//   r(n+1) = x(p) - 1
//
// Newton's step d solves J d = r; x and l then change by -d:
//
//       | A - l I   -x |
//   J = |              |        e_p the row with 1 in column p
//       |  e_p       0 |
//
// J is regular at a simple eigenvalue, although A - l I is singular. A step that would change an
// element of x by more than 0.025, or l by more than 5 %, is shortened as a whole, so that a mode
// cannot jump to a neighbour. Where J is singular, only l is changed, by 1 %.
//
// The modes are independent; several are followed side by side, one per lane, and a lane whose mode
// is done takes the next one.
#include "modal/newton.h"

#include "kernels/bordered_system.h"
#include "kernels/hyperbolic.h"
#include "kernels/matrix_kernels.h"

#include <algorithm>
#include <cmath>
#include <complex>

namespace lcp {

namespace {

constexpr double CONVERGED = 1e-8; // sum of the moduli of the residual of a solved mode
constexpr double NEARCONVERGED =
    1e-9; // relative; this close to the limit the moduli are summed exactly
constexpr double VECTORSTEP = 0.025; // largest change of a vector element in one step
constexpr double SMALLSTEP = (1 - 1e-12) * VECTORSTEP * VECTORSTEP;
constexpr double EIGENSTEP = 0.05; // largest relative change of an eigenvalue in one step
constexpr double RECOVERY = 1.01;  // factor on an eigenvalue at a singular Jacobian
constexpr double UNLIMITED = 1e30; // initial limit of the step factor

// The eigenvalue problem of one frequency and the modes being followed.
struct Followers {
  BorderedMatrix M;    // the scaled matrix, for the Newton steps
  LeftFactor A;        // ... and for the residuals
  BorderedSystems S;   // scaled eigenvalues, vectors, fixed elements, residuals
  LaneVectors product; // A x
  double e[LANES];     // sum of the moduli of the residual
  int mode[LANES];
  int count[LANES];  // number of updates of the mode
  bool moved[LANES]; // its vector differs from the guess
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

// Assigns mode k to lane c, with its guess l and x.
void begin(Followers& F, int c, int k, Complex l, const Complex* x, int p, const Complex* product) {
  F.S.used[c] = true;
  F.S.l.set(c, l);
  F.S.x.setLane(c, x, F.M.n);
  F.S.p[c] = p;
  F.product.setLane(c, product, F.M.n);
  F.mode[c] = k;
  F.count[c] = 0;
  F.moved[c] = false;
}

// Clears all lanes; unused lanes hold zeros.
void clearLanes(Followers& F) {
  const ModeComplex zeros;
  for (int c = 0; c < LANES; ++c) {
    begin(F, c, 0, 0.0, zeros.data(), 1, zeros.data());
    F.S.used[c] = false;
  }
}

double exactMeasure(const LaneVectors& r, int c, int n) {
  double e = 0.0;
  for (int i = 1; i <= n + 1; ++i) e += std::abs(r[i].lane(c));
  return e;
}

LCP_WIDTHS("avx2")
void residuals(LaneVectors& r, const LaneVectors& product, const ComplexLanes& l,
               const LaneVectors& x, int n) {
  for (int i = 1; i <= n; ++i) r[i] = product[i] - l * x[i];
}

// Computes the residuals of all lanes and their measures.
void look(Followers& F) {
  const int n = F.M.n;
  LaneVectors& r = F.S.r;
  residuals(r, F.product, F.S.l, F.S.x, n);
  for (int c = 0; c < LANES; ++c) r[n + 1].set(c, F.S.x[F.S.p[c]].lane(c) - 1.0);
  sumOfModuli(F.e, r, n + 1);
  for (int c = 0; c < LANES; ++c) {
    const bool clear = std::fabs(F.e[c] - CONVERGED) > NEARCONVERGED * CONVERGED;
    if (F.S.used[c] && !clear) F.e[c] = exactMeasure(r, c, n);
  }
}

bool converged(const Followers& F, int c) { return F.e[c] <= CONVERGED; }

// Ends the mode of lane c and returns whether it converged.
bool finish(Followers& F, int c, double s, ModeComplex& EIG, CView TI) {
  const int k = F.mode[c];
  F.S.used[c] = false;
  if (F.count[c] > 0) EIG[k] = s * F.S.l.lane(c);
  if (F.moved[c]) F.S.x.getLane(c, TI.column(k), F.M.n);
  SOLVEDATA.first.NRITER[k] = converged(F, c) ? std::max(F.count[c], 1) : MAXNEWTON + 1;
  return converged(F, c);
}

// Fraction of the step d that is applied: 1 unless an element or the eigenvalue would change too
// much. If the sum of squares is small, no element does.
double stepFactor(const LaneVectors& d, int c, double squares, Complex l, int n) {
  bool limited = false;
  double t = UNLIMITED;
  for (int i = 1; !(squares < SMALLSTEP) && i <= n; ++i) {
    const double length = std::abs(d[i].lane(c));
    if (!(length > VECTORSTEP)) continue;
    limited = true;
    t = std::min(t, VECTORSTEP / length);
  }
  const Complex dl = d[n + 1].lane(c);
  const double length = std::abs(dl);
  if (length > EIGENSTEP * std::abs(l)) {
    limited = true;
    t = std::min(t, EIGENSTEP * std::abs(l / dl));
  }
  return limited ? t : 1.0;
}

LCP_WIDTHS("avx2")
void moveVectors(LaneVectors& x, const double (&a)[LANES], const LaneVectors& d, int n) {
  const Lanes part = {a[0], a[1], a[2], a[3]};
  for (int i = 1; i <= n; ++i) {
    x[i].re -= part * d[i].re;
    x[i].im -= part * d[i].im;
  }
}

// One Newton update of the modes in all lanes.
void update(Followers& F) {
  static LaneVectors d;
  const int n = F.M.n;
  bool solved[LANES];
  double squares[LANES], parts[LANES] = {};
  SOLVEBORDERED(d, solved, F.M, F.S);
  sumOfSquares(squares, d, n);
  for (int c = 0; c < LANES; ++c) {
    if (!F.S.used[c]) continue;
    Complex& LSTEP = SOLVEDATA.first.LSTEP[F.mode[c]];
    const Complex l = F.S.l.lane(c);
    ++F.count[c];
    if (solved[c]) {
      parts[c] = stepFactor(d, c, squares[c], l, n);
      LSTEP = l - parts[c] * d[n + 1].lane(c);
      F.moved[c] = true;
    } else {
      // An eigenvalue that has not been stepped yet is taken from the guess, since 1 % of 0 would
      // have no effect.
      LSTEP = RECOVERY * (LSTEP == 0.0 ? l : LSTEP);
      for (int i = 1; i <= n; ++i) d[i].set(c, 0.0); // zero step, without NaN
    }
    F.S.l.set(c, LSTEP);
  }
  moveVectors(F.S.x, parts, d, n);
  multiply(F.product, F.A, F.S.x);
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
  static Followers F;
  static LineMatrix products; // A XGUESS
  bool ok = true;
  s = scaleByDiagonal(A, n);
  reduce(F.M, A, n);
  prepare(F.A, A, n);
  CMATMUL(products, A, XGUESS, n);
  clearLanes(F);
  for (int k = 1, working = 0;;) {
    for (int c = 0; c < LANES && k <= n; ++c) {
      if (F.S.used[c]) continue;
      begin(F, c, k, LGUESS[k], XGUESS.column(k), PIVOT[k], products.view().column(k));
      ++working;
      ++k;
    }
    if (working == 0) return ok;
    look(F);
    bool freed = false;
    for (int c = 0; c < LANES; ++c) {
      if (!F.S.used[c] || !(converged(F, c) || F.count[c] == MAXNEWTON)) continue;
      ok = finish(F, c, s, EIG, TI) && ok;
      --working;
      freed = true;
    }
    if (working > 0 && !(freed && k <= n)) update(F);
  }
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

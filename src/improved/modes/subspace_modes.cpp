// With the right eigenvectors V of P = V L V^-1 as columns, the left ones as rows of V^-1, and the
// reference X, X^-1:
//
//   C = X^-1 V,  D = V^-1 X = C^-1,  s(i,g) = sum over the modes j of group g of C(i,j) D(j,i)
//
// s(i,g) is the part of reference mode i that lies in the invariant subspace of group g,
// independent of the scaling of the vectors; its sum over all groups is 1. Modes are assigned to
// places in the groups so that the sum of |1 - s| is minimal. A group of one is an ordinary mode.
// Reference modes assigned to a larger group are projected onto its subspace, V_g D_g, and
// orthogonalised in the bilinear form, which gives the basis nearest to the reference. Their
// eigenvalues are those of the projected matrix, the diagonal of X^-1 P X.
#include "improved/modes/subspace_modes.h"

#include "base/console.h"
#include "base/solve_error.h"
#include "improved/modes/assignment.h"
#include "improved/modes/equal_modes.h"
#include "kernels/hyperbolic.h"
#include "kernels/lapack.h"
#include "kernels/matrix_kernels.h"

#include <algorithm>
#include <cmath>

namespace lcp {

namespace {

constexpr double SHIFTREAL = 0.7; // relative to the mean element, as in the default decomposition
constexpr double SHIFTIMAG = 0.812345;
constexpr double CLEAR = 0.3; // |1 - s| up to which an assignment is unambiguous

[[noreturn]] void refuseModes() {
  console::openStars();
  console::line("The Modes of the Line cannot be Found");
  console::line("Verify Transmission line data");
  stopInStars();
}

void invert(LineMatrix& R, const LineMatrix& A, int n) {
  ModeInts exchanges;
  copyCorner(R, A, n);
  if (!ZGETRF(R, n, exchanges) || !ZGETRI(R, n, exchanges)) refuseModes();
}

// Condition number of each eigenvalue: norm(left vector) norm(right vector), scaled to a product of
// 1.
void conditions(ModeReals& KAPPA, const LineMatrix& V, const LineMatrix& VINV, int n) {
  ModeReals left;
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) left[i] += std::norm(VINV(i, j));
  }
  for (int j = 1; j <= n; ++j) {
    double right = 0;
    for (int i = 1; i <= n; ++i) right += std::norm(V(i, j));
    KAPPA[j] = std::sqrt(left[j] * right);
  }
}

// Distance from the shift, which orders the modes; that of the first mode of the group.
double distance(const ModeSet& M, int j, Complex shift) { return std::abs(M.L[M.G.of[j]] - shift); }

// Orders modes by decreasing distance; those of a group stay together.
void orderByShift(ModeInts& slot, const ModeSet& M, int n) {
  const LineMatrix& P = SOLVEDATA.first.PMAT;
  double mean = 0;
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) mean += L1MAG(P(i, j));
  }
  mean /= static_cast<double>(n) * n;
  const Complex shift(SHIFTREAL * mean, SHIFTIMAG * mean);
  for (int i = 1; i <= n; ++i) slot[i] = i;
  std::sort(slot.data(), slot.data() + n, [&](int a, int b) {
    const double da = distance(M, a, shift), db = distance(M, b, shift);
    if (da != db) return da > db;
    return M.G.of[a] != M.G.of[b] ? M.G.of[a] < M.G.of[b] : a < b;
  });
}

// The modes that are assigned to places in a group.
int membersOf(ModeInts& mode, const ModeSet& M, const ModeInts& slot, int group, int n) {
  int m = 0;
  for (int i = 1; i <= n; ++i) {
    if (M.G.of[slot[i]] == group) mode[++m] = i;
  }
  return m;
}

void putBasis(const Basis& B, const ModeInts& mode) {
  for (int c = 1; c <= B.m; ++c) {
    std::copy_n(B.V.view().column(c), B.n, SOLVEDATA.first.TI.view().column(mode[c]));
  }
}

// Column c of the basis: mode i of the reference projected onto the group, V_g D_g.
void projectOn(Basis& B, int c, const ModeSet& M, int group, int i, const LineMatrix& D) {
  std::fill_n(B.V.view().column(c), B.n, Complex());
  for (int j = 1; j <= B.n; ++j) {
    if (M.G.of[j] != group) continue;
    const Complex d = D(j, i);
    for (int r = 1; r <= B.n; ++r) B.V(r, c) += d * M.V(r, j);
  }
}

// Stores the vectors of the modes at their places, each as a mode of its own.
void takeSingly(const ModeSet& M, const ModeInts& slot, int n) {
  FirstLoopStore& S = SOLVEDATA.first;
  for (int i = 1; i <= n; ++i) {
    S.EIG[i] = M.L[slot[i]];
    for (int r = 1; r <= n; ++r) {
      S.TI(r, i) = M.V(r, slot[i]);
      S.TIINV(i, r) = M.VINV(slot[i], r);
    }
  }
}

// Diagonal element of TIINV P TI for a mode of the group.
Complex projectedEigenvalue(const ModeSet& M, int i, int group, int n) {
  const FirstLoopStore& S = SOLVEDATA.first;
  Complex sum;
  for (int j = 1; j <= n; ++j) {
    if (M.G.of[j] != group) continue;
    Complex left, right;
    for (int r = 1; r <= n; ++r) {
      left += S.TIINV(i, r) * M.V(r, j);
      right += M.VINV(j, r) * S.TI(r, i);
    }
    sum += left * M.L[j] * right;
  }
  return sum;
}

// Sets basis and eigenvalues of the groups of more than one mode. D holds the coefficients of the
// reference, or is nullptr for the standard basis.
void takeGroups(const ModeSet& M, const ModeInts& slot, const LineMatrix* D, int n) {
  static Basis B;
  FirstLoopStore& S = SOLVEDATA.first;
  ModeInts mode;
  bool any = false;
  for (int g = 1; g <= n; ++g) {
    if (M.G.of[g] != g || M.G.size[g] < 2) continue;
    any = true;
    B.n = n;
    B.m = membersOf(mode, M, slot, g, n);
    for (int c = 1; c <= B.m; ++c) {
      if (D != nullptr) {
        projectOn(B, c, M, g, mode[c], *D);
      } else {
        std::copy_n(S.TI.view().column(mode[c]), n, B.V.view().column(c));
      }
    }
    if (D != nullptr) {
      turnToRightAngles(B, S.ZMAT);
    } else {
      standardBasis(B, S.ZMAT);
    }
    putBasis(B, mode);
  }
  if (!any) return;
  invert(S.TIINV, S.TI, n);
  for (int i = 1; i <= n; ++i) {
    const int g = M.G.of[slot[i]];
    if (M.G.size[g] > 1) S.EIG[i] = projectedEigenvalue(M, i, g, n);
  }
}

void takeModes(const ModeSet& M, const ModeInts& slot, const LineMatrix* D, int n) {
  FirstLoopStore& S = SOLVEDATA.first;
  takeSingly(M, slot, n);
  takeGroups(M, slot, D, n);
  PIVNORM(S.TI, S.TIINV, S.PIVOT, n);
}

// cost(i,j) = |1 - s(i,g)| for the group g of mode j.
void formCosts(RealMatrix& cost, const ModeSet& M, const LineMatrix& C, const LineMatrix& D,
               int n) {
  for (int i = 1; i <= n; ++i) {
    ModeComplex part;
    for (int j = 1; j <= n; ++j) part[M.G.of[j]] += C(i, j) * D(j, i);
    for (int j = 1; j <= n; ++j) cost(i, j) = std::abs(1.0 - part[M.G.of[j]]);
  }
}

} // namespace

void findModes(ModeSet& M, int n) {
  static LineMatrix copy;
  copyCorner(copy, SOLVEDATA.first.PMAT, n);
  if (!ZGEEV(copy, M.L, M.V, n, BackSubstitution::ByBlocks)) refuseModes();
  invert(M.VINV, M.V, n);
  conditions(M.KAPPA, M.V, M.VINV, n);
  findGroups(M.G, M.L, M.KAPPA, n);
}

void startSubspaces(int n) {
  static ModeSet M;
  ModeInts slot;
  findModes(M, n);
  orderByShift(slot, M, n);
  takeModes(M, slot, nullptr, n);
}

bool followSubspaces(const ModeFrame& reference, const ModeSet& M, int n) {
  static LineMatrix C, D;
  static RealMatrix cost;
  ModeInts slot;
  CMATMUL(C, reference.XINV, M.V, n);
  CMATMUL(D, M.VINV, reference.X, n);
  formCosts(cost, M, C, D, n);
  ASSIGN(slot, cost, n);
  takeModes(M, slot, &D, n);
  double worst = 0;
  for (int i = 1; i <= n; ++i) worst = std::max(worst, cost(i, slot[i]));
  return worst < CLEAR;
}

void takeFrame(ModeFrame& frame, int n) {
  copyCorner(frame.X, SOLVEDATA.first.TI, n);
  copyCorner(frame.XINV, SOLVEDATA.first.TIINV, n);
}

void invertFrame(ModeFrame& frame, int n) { invert(frame.XINV, frame.X, n); }

} // namespace lcp

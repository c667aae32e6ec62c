// Eigenvalues by repeated squaring and deflation. The powers of a matrix that has one eigenvalue of
// largest modulus tend to rank one, W = c x y^T: any column of W is then the right eigenvector x of
// that eigenvalue and any row its left eigenvector y. With y^T x = 1
//
//   l = y^T A x,   A = A - l x y^T,   P = P - x y^T
//
// remove the pair from the matrix and from the projector P onto the subspace not found yet, and the
// next largest eigenvalue follows. P keeps later pairs free of earlier ones: x = P x, y = P^T y.
//
// First a shift s = (0.7 + j 0.812345) m, where m is the mean of |Re| + |Im| over the elements, is
// subtracted from the diagonal. It separates eigenvalues of equal modulus, such as conjugate or
// opposite ones.
//
// Squaring k times raises the ratio q of the two largest moduli to q^(2^k): 20 squarings separate
// eigenvalues that differ by 1e-5. Once the matrix is negligible against the last eigenvalue, or
// zero, the remaining vectors are taken from P itself.
#include "kernels/eigen_package.h"

#include "diag/message_package.h"
#include "diag/version_stamp.h"
#include "kernels/hyperbolic.h"
#include "kernels/matrix_kernels.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <string_view>

namespace lcp {

namespace {

constexpr int EITERFAILED = 1000;
ModeInts EITER; // squarings spent on each vector; EITER[1] = EITERFAILED if one did not settle

constexpr double SHIFTREAL = 0.7; // relative to the mean element
constexpr double SHIFTIMAG = 0.812345;
constexpr double SETTLED = 1e-6;  // change of shape between a power and its square
constexpr double TOOSMALL = 1e-5; // a largest element outside this range is scaled to 1
constexpr double TOOLARGE = 1e5;
constexpr int MAXSQUARINGS = 100;

// Puts a routine on the name stack for its lifetime.
class Entry {
public:
  Entry(std::string_view routine, int date) : name(routine) {
    NVDATE(date, EIGENSTAMP);
    BAKTRC(name, LIBRARY, STACKPUSH);
  }
  ~Entry() { BAKTRC(name, LIBRARY, STACKPOP); }
  Entry(const Entry&) = delete;
  Entry& operator=(const Entry&) = delete;

private:
  static constexpr std::string_view LIBRARY = "MODALPAK";
  std::string_view name;
};

struct Place {
  int I = 1;
  int J = 1;
};

// What VALVC0 returns besides W.
struct Dominant {
  Place at;          // largest element of the last matrix that was squared
  double BIG = 0.0;  // its magnitude
  bool FLAG = false; // the rest is negligible against the last eigenvalue found
};

void CUNIT(CView P, int n) {
  const Entry entry("CUNIT", 900125);
  for (int j = 1; j <= n; ++j) {
    std::fill_n(P.column(j), n, 0.0);
    P(j, j) = 1.0;
  }
}

void CCDUP(CView B, CConstView A, int n) {
  const Entry entry("CCDUP", 900123);
  for (int j = 1; j <= n; ++j) std::copy_n(A.column(j), n, B.column(j));
}

// The largest element by |Re| + |Im|; among equal ones the first in row order.
Place CMBIG(CConstView A, int n) {
  const Entry entry("CMBIG", 901027);
  Place largest;
  double best = 0.0;
  for (int i = 1; i <= n; ++i) {
    for (int j = 1; j <= n; ++j) {
      if (!(L1MAG(A(i, j)) > best)) continue;
      best = L1MAG(A(i, j));
      largest = {i, j};
    }
  }
  return largest;
}

void CSCALE(CView A, double s, int n) {
  const Entry entry("CSCALE", 900125);
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) A(i, j) *= s;
  }
}

// W = C C.
void CCMLT(CView W, CConstView C, int n) {
  const Entry entry("CCMLT", 900123);
  CMATMUL(W, C, C, n);
}

// Difference in shape between column J and row I of a matrix and of its square: 0 at rank one.
double EIGTST(CConstView W, CConstView C, Place at, int n) {
  const Entry entry("EIGTST", 910209);
  const auto [I, J] = at;
  const Complex w = W(I, J), c = C(I, J);
  extended e = 0;
  for (int k = 1; k <= n; ++k) {
    e += static_cast<extended>(std::abs(W(k, J) / w - C(k, J) / c)) +
         static_cast<extended>(std::abs(W(I, k) / w - C(I, k) / c));
  }
  return static_cast<double>(e);
}

// Squares the deflated matrix C until it has rank one, W.
Dominant VALVC0(CView W, CView C, const ModeComplex& L, int K, int n) {
  const Entry entry("VALVC0", 910127);
  Dominant D;
  int iter = 1;
  for (;;) {
    D.at = CMBIG(C, n);
    D.BIG = L1MAG(C(D.at.I, D.at.J));
    if (iter == 1 && K > 1) {
      const extended a = L1MAG(L[K - 1]);
      D.FLAG = a + static_cast<extended>(D.BIG) == a;
    }
    if (D.FLAG || D.BIG == 0.0) break;
    if (D.BIG < TOOSMALL || D.BIG > TOOLARGE) CSCALE(C, 1.0 / D.BIG, n);
    CCMLT(W, C, n);
    if (EIGTST(W, C, D.at, n) < SETTLED) break;
    CCDUP(C, W, n);
    if (++iter > MAXSQUARINGS) {
      EITER[1] = iter = EITERFAILED;
      break;
    }
  }
  EITER[K] = iter;
  return D;
}

// Copies row I and column J of M as pair K.
void VALVC1(CView Y, CView X, CConstView M, Place at, int K, int n) {
  const Entry entry("VALVC1", 910126);
  for (int i = 1; i <= n; ++i) {
    Y(K, i) = M(at.I, i);
    X(i, K) = M(i, at.J);
  }
}

// Projects pair K: y = P^T y, x = P x.
void VALVC2(CView Y, CView X, CConstView P, int K, int n) {
  const Entry entry("VALVC2", 910126);
  ModeComplex y, x;
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) {
      y[j] += P(i, j) * Y(K, i);
      x[i] += P(i, j) * X(j, K);
    }
  }
  for (int i = 1; i <= n; ++i) {
    Y(K, i) = y[i];
    X(i, K) = x[i];
  }
}

// Scales pair K so that element I of x is 1 and y^T x = 1.
void VALVC3(CView Y, CView X, int I, int K, int n) {
  const Entry entry("VALVC3", 910126);
  const Complex a = X(I, K);
  for (int i = 1; i <= n; ++i) X(i, K) /= a;
  X(I, K) = 1.0;
  Complex s = 0.0;
  for (int m = 1; m <= n; ++m) s += Y(K, m) * X(m, K);
  for (int m = 1; m <= n; ++m) Y(K, m) /= s;
}

// y^T A x of pair K.
Complex VALVC4(CConstView Y, CConstView X, CConstView A, int K, int n) {
  const Entry entry("VALVC4", 910126);
  ModeComplex t;
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) t[i] += A(i, j) * X(j, K);
  }
  Complex l = 0.0;
  for (int i = 1; i <= n; ++i) l += Y(K, i) * t[i];
  return l;
}

// Removes pair K from P.
void deflateProjector(CConstView Y, CConstView X, CView P, int K, int n) {
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) P(i, j) -= X(i, K) * Y(K, j);
  }
}

// Removes pair K from P and A.
void VALVC5(CConstView Y, CConstView X, CView P, CView A, Complex l, int K, int n) {
  const Entry entry("VALVC5", 910126);
  deflateProjector(Y, X, P, K, n);
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) A(i, j) -= l * X(i, K) * Y(K, j);
  }
}

// The remaining matrix is negligible: the pairs from K on have the eigenvalue 0 and span the range
// of P.
void VALVC6(CView Y, CView X, CView P, ModeComplex& L, int K, int n) {
  const Entry entry("VALVC6", 910126);
  for (int k = K; k <= n; ++k) {
    L[k] = 0.0;
    const Place at = CMBIG(P, n);
    VALVC1(Y, X, P, at, k, n);
    VALVC3(Y, X, at.I, k, n);
    deflateProjector(Y, X, P, k, n);
  }
}

// Decomposes the shifted A; P, C and W are work arrays.
void VALVEC(ModeComplex& L, CView Y, CView X, CView A, CView P, CView C, CView W, int n) {
  const Entry entry("VALVEC", 910126);
  CUNIT(P, n);
  Dominant D;
  for (int K = 1; K <= n; ++K) {
    if (K != n) {
      CCDUP(C, A, n);
      D = VALVC0(W, C, L, K, n);
      if (EITER[1] == EITERFAILED) return;
      if (D.BIG == 0.0) {
        VALVC6(Y, X, P, L, K, n);
        return;
      }
    }
    if (!D.FLAG && K != n) {
      VALVC1(Y, X, W, D.at, K, n);
      if (K != 1) VALVC2(Y, X, P, K, n);
    } else {
      D.at = CMBIG(P, n);
      VALVC1(Y, X, P, D.at, K, n);
    }
    VALVC3(Y, X, D.at.I, K, n);
    L[K] = VALVC4(Y, X, A, K, n);
    if (K != n) VALVC5(Y, X, P, A, L[K], K, n);
  }
}

} // namespace

void VALVC(ModeComplex& L, CView Y, CView X, CView A, int n) {
  static LineMatrix P, C, W;
  const Entry entry("VALVC", 901220);
  if (n > LDMAT) ERRMSG("VALVC", " Matrix dimensions out of bounds", MSGFATAL);
  double sum = 0.0;
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) sum += L1MAG(A(i, j));
  }
  const double m = sum / (static_cast<double>(n) * n);
  const Complex s(SHIFTREAL * m, SHIFTIMAG * m);
  for (int i = 1; i <= n; ++i) A(i, i) -= s;
  VALVEC(L, Y, X, A, P, C, W, n);
  for (int k = 1; k <= n; ++k) L[k] += s;
}

bool settledVectors() { return EITER[1] != EITERFAILED; }

} // namespace lcp

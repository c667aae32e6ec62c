// Sensitivity of H to eigenvalue l_j of the residue matrix T diag(l) Q, Q = T^-1, of a pole p in
// the group with delay tau, at s = j w:
//
//   dH(r,c) / dl_j = T(r,j) Q(j,c) e^(-s tau) / (s - p)
//
// Passivity requires that these two matrices have no negative eigenvalue:
//
//   G1 = (P1 + P1^H) / 2    P1 = A^-1 B Yc    A = I + H     dP1 = -A^-1 dH (A^-1 B + I) Yc
//   G2 = (P2 + P2^H) / 2    P2 = B^-1 A Yc    B = I - H     dP2 =  B^-1 dH (B^-1 A + I) Yc
//
// An eigenvalue with right eigenvector v (column of V) and left eigenvector u (row of V^-1) has the
// derivative Re(u dG v). With dP = L dH R this is
//
//   Re(u dG v) = 1/2 Re(sum over r, c of ((u L)_r (R v)_c + (v^H L)_r (R u^H)_c) dH(r,c))
//
// so each eigenvalue has one weight per real number in a column of the sensitivity of H.
#include "passivity/residue_sensitivity.h"

#include "kernels/lapack.h"
#include "kernels/matrix_kernels.h"
#include "passivity/nodal_admittance.h"

#include <complex>

namespace lcp {

namespace {

Complex* columnOf(RView S, int k) { return reinterpret_cast<Complex*>(S.column(k)); }

// Frequencies of the linearisation are single precision numbers.
Complex roundedS(double f) { return {0, single(SINGLETWOPI * f)}; }

// The derivative of H with respect to one eigenvalue.
void fillColumn(Complex* to, const FreeEigenvalue& e, Complex factor) {
  const LineMatrix& T = ENFORCE.FVEC[e.pole];
  const LineMatrix& Q = ENFORCE.FVECINV[e.pole];
  for (int c = 1; c <= ENFORCE.NC; ++c) {
    for (int r = 1; r <= ENFORCE.NC; ++r) *to++ = T(r, e.eigenvalue) * Q(e.eigenvalue, c) * factor;
  }
}

} // namespace

void RESSENS(double f, RView S) {
  static Table<Complex, MAXORDER> factor;
  const EnforcementStore& E = ENFORCE;
  const int elements = E.NC * E.NC;
  poleFactors(roundedS(f), factor);
  int k = 0;
  for (int i = 1; i <= E.NFREE; ++i) {
    const Complex* real = columnOf(S, ++k);
    fillColumn(columnOf(S, k), E.FREE[i], factor[E.FREE[i].pole]);
    if (!E.FREE[i].complex) continue;
    Complex* turned = columnOf(S, ++k); // j times the derivative
    for (int e = 0; e < elements; ++e) turned[e] = {-real[e].imag(), real[e].real()};
  }
}

namespace {

// Quantities of one condition: P = L' X Yc with L' the inverse of I + H or I - H.
struct Condition {
  LineMatrix inverse; // A^-1 or B^-1
  LineMatrix right;   // R: (A^-1 B + I) Yc or (B^-1 A + I) Yc
  LineMatrix V;       // eigenvectors of G
  LineMatrix U;       // their inverse
  ModeComplex w;      // eigenvalues of G
};

// plus = I + H and minus = I - H for the first condition, exchanged for the second.
void solveCondition(Condition& K, CConstView plus, CConstView minus, CConstView Yc) {
  static LineMatrix ratio, P, G;
  const int n = ENFORCE.NC;
  ZINVERSE(plus, K.inverse, n);
  CMATMUL(ratio, K.inverse, minus, n);
  CMATMUL(P, ratio, Yc, n);
  for (int c = 1; c <= n; ++c) {
    for (int r = 1; r <= n; ++r) {
      G(r, c) = (P(r, c) + std::conj(P(c, r))) / 2.0;
      K.right(r, c) = P(r, c) + Yc(r, c);
    }
  }
  ZEIGSORT(G, K.w, K.V, n);
  ZINVERSE(K.V, K.U, n);
}

void adjoint(CView B, CConstView A, int n) {
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) B(i, j) = std::conj(A(j, i));
  }
}

// Weights of the real numbers of a sensitivity column for each eigenvalue: one column of Q per
// eigenvalue, starting at `from`; `sign` is the sign of dP.
void fillWeights(const Condition& K, double sign, RView Q, int from) {
  static LineMatrix UL, RV, VL, RU, H;
  const int n = ENFORCE.NC;
  CMATMUL(UL, K.U, K.inverse, n);
  CMATMUL(RV, K.right, K.V, n);
  adjoint(H, K.V, n);
  CMATMUL(VL, H, K.inverse, n);
  adjoint(H, K.U, n);
  CMATMUL(RU, K.right, H, n);
  for (int i = 1; i <= n; ++i) {
    Complex* to = columnOf(Q, from + i - 1);
    for (int c = 1; c <= n; ++c) {
      for (int r = 1; r <= n; ++r) {
        const Complex weight = UL(i, r) * RV(c, i) + VL(i, r) * RU(c, i);
        *to++ = 0.5 * sign * std::conj(weight);
      }
    }
  }
}

} // namespace

void EIGSENS(double f, RView D, NodalReals& lambda) {
  static LineMatrix H, plus, minus, Yc;
  static Condition alike, against;
  static double weights[static_cast<std::size_t>(SENSROWS) * LDNODAL];
  EnforcementStore& E = ENFORCE;
  const int n = E.NC;
  const Complex s = roundedS(f);
  propagationAt(E.FRES, s, H);
  characteristicAt(s, true, Yc);
  for (int c = 1; c <= n; ++c) {
    for (int r = 1; r <= n; ++r) {
      plus(r, c) = H(r, c) + (r == c ? 1.0 : 0.0);
      minus(r, c) = -H(r, c) + (r == c ? 1.0 : 0.0);
    }
  }
  solveCondition(alike, plus, minus, Yc);
  solveCondition(against, minus, plus, Yc);
  for (int i = 1; i <= n; ++i) {
    lambda[i] = alike.w[i].real();
    lambda[n + i] = against.w[i].real();
  }
  const int rows = 2 * n * n;
  const RView Q(weights, rows), S(E.SENS, rows);
  fillWeights(alike, -1.0, Q, 1);
  fillWeights(against, 1.0, Q, n + 1);
  RESSENS(f, S);
  transposedProduct(D, Q, S, rows, 2 * n, E.NVAR);
}

} // namespace lcp

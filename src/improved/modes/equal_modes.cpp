// For symmetric Y and Z, eigenvectors x_a, x_b of Y Z with different eigenvalues satisfy
// x_a^T Z x_b = 0. Equal modes can be chosen to satisfy it too, and only then are the modal
// matrices diagonal and their quotients surge impedances.
//
// Nearest basis (Procrustes problem in the bilinear form): with M = V^T Z V and D its diagonal,
//
//   V D^-1/2 N^-1/2,  N = D^-1/2 M D^-1/2
//
// satisfies the condition and is the basis nearest to V D^-1/2 that does. N^-1/2 is computed by
// Newton's iteration, T = T (3 I - T^T N T) / 2, which converges quadratically.
//
// Standard basis: the columns of the projector V V^H onto the space do not depend on V. Those with
// the largest diagonal elements, orthogonalised, are real where the space is real. The pencil of
// V^T Z V and V^T V then separates vectors with different quotients.
#include "improved/modes/equal_modes.h"

#include "kernels/lapack.h"
#include "kernels/matrix_kernels.h"

#include <algorithm>
#include <cmath>

namespace lcp {

namespace {

constexpr double SAMEVALUE = 1e-9;    // relative difference of eigenvalues that count as equal
constexpr double UNCERTAINTY = 1e-14; // of an eigenvalue of condition 1, over the largest one
constexpr double RIGHTANGLE = 1e-14;  // cosine that counts as 0
constexpr double CONTRACTING = 0.9;   // norm of N - I up to which the iteration is used
constexpr int MOSTITERATIONS = 60;
constexpr double ISOTROPIC = 1e-6; // x^T Z x relative to its largest possible value
constexpr double SAMEROW = 1e-6;   // rows of the projector closer than this count as equal

void unite(ModeGroups& G, int a, int b, int n) {
  const int low = std::min(G.of[a], G.of[b]);
  const int high = std::max(G.of[a], G.of[b]);
  for (int i = 1; i <= n; ++i) {
    if (G.of[i] == high) G.of[i] = low;
  }
}

// out = V T for a basis V and an m by k matrix T.
void combine(Basis& out, const Basis& B, const LineMatrix& T, int k) {
  out.n = B.n;
  out.m = k;
  for (int c = 1; c <= k; ++c) {
    std::fill_n(out.V.view().column(c), B.n, Complex());
    for (int j = 1; j <= B.m; ++j) {
      const Complex t = T(j, c);
      for (int i = 1; i <= B.n; ++i) out.V(i, c) += t * B.V(i, j);
    }
  }
}

// M = V^T Z V, m by m.
void bilinear(LineMatrix& M, const Basis& B, CConstView Z) {
  ModeComplex z;
  for (int b = 1; b <= B.m; ++b) {
    std::fill_n(z.data(), B.n, Complex());
    for (int j = 1; j <= B.n; ++j) {
      for (int i = 1; i <= B.n; ++i) z[i] += Z(i, j) * B.V(j, b);
    }
    for (int a = 1; a <= B.m; ++a) {
      Complex sum;
      for (int i = 1; i <= B.n; ++i) sum += B.V(i, a) * z[i];
      M(a, b) = sum;
    }
  }
}

// K = T^T M T.
void congruent(LineMatrix& K, const LineMatrix& M, const LineMatrix& T, int m) {
  static LineMatrix product;
  CMATMUL(product, M, T, m);
  for (int b = 1; b <= m; ++b) {
    for (int a = 1; a <= m; ++a) {
      Complex sum;
      for (int i = 1; i <= m; ++i) sum += T(i, a) * product(i, b);
      K(a, b) = sum;
    }
  }
}

// Scales the columns of T so that the diagonal of K = T^T M T becomes 1. Returns the norm of the
// remaining off-diagonal part, or a negative number if a column cannot be scaled.
double scaleToOne(LineMatrix& T, LineMatrix& K, int m) {
  ModeComplex s;
  double largest = 0, beside = 0;
  for (int j = 1; j <= m; ++j) {
    for (int i = 1; i <= m; ++i) largest = std::max(largest, std::abs(K(i, j)));
  }
  for (int i = 1; i <= m; ++i) {
    if (!(std::abs(K(i, i)) > ISOTROPIC * largest)) return -1;
    s[i] = 1.0 / std::sqrt(K(i, i));
  }
  for (int j = 1; j <= m; ++j) {
    for (int i = 1; i <= m; ++i) {
      T(i, j) *= s[j];
      K(i, j) *= s[i] * s[j];
      if (i != j) beside += std::norm(K(i, j));
    }
  }
  return std::sqrt(beside);
}

// Orthogonalises each column against those before it; used far from orthogonality.
void turnInOrder(LineMatrix& T, const LineMatrix& M, int m) {
  static LineMatrix K;
  for (int b = 2; b <= m; ++b) {
    for (int a = 1; a < b; ++a) {
      congruent(K, M, T, m);
      const Complex q = K(a, b) / K(a, a);
      for (int i = 1; i <= m; ++i) T(i, b) -= q * T(i, a);
    }
  }
}

void unitMatrix(LineMatrix& T, int m) {
  clear(T, m);
  for (int i = 1; i <= m; ++i) T(i, i) = 1.0;
}

// Finds the transformation T of a basis with bilinear form M. Returns false if there is none.
bool rightAngles(LineMatrix& T, const LineMatrix& M, int m) {
  static LineMatrix K, next;
  bool inOrder = false;
  unitMatrix(T, m);
  for (int it = 1; it <= MOSTITERATIONS; ++it) {
    congruent(K, M, T, m);
    const double beside = scaleToOne(T, K, m);
    if (beside < 0) return false;
    if (beside <= RIGHTANGLE * m) return true;
    if (beside > CONTRACTING) {
      if (inOrder) return false;
      inOrder = true;
      turnInOrder(T, M, m);
      continue;
    }
    for (int j = 1; j <= m; ++j) {
      for (int i = 1; i <= m; ++i) K(i, j) = i == j ? Complex(1.0) : -0.5 * K(i, j);
    }
    CMATMUL(next, T, K, m);
    copyCorner(T, next, m);
  }
  return true;
}

// Orthogonalises column c against the first k columns, twice for full accuracy, and scales it to
// unit length.
void orthonormalise(Basis& B, int c, int k) {
  for (int pass = 1; pass <= 2; ++pass) {
    for (int j = 1; j <= k; ++j) {
      Complex dot;
      for (int i = 1; i <= B.n; ++i) dot += std::conj(B.V(i, j)) * B.V(i, c);
      for (int i = 1; i <= B.n; ++i) B.V(i, c) -= dot * B.V(i, j);
    }
    double length = 0;
    for (int i = 1; i <= B.n; ++i) length += std::norm(B.V(i, c));
    for (int i = 1; i <= B.n; ++i) B.V(i, c) /= std::sqrt(length);
  }
}

// The first row among those with the largest part in the space.
int largestRow(const ModeReals& d, int n) {
  int row = 1;
  for (int i = 2; i <= n; ++i) {
    if (d[i] > d[row] + SAMEROW) row = i;
  }
  return row;
}

// Replaces the basis by orthonormalised columns of the projector onto the space.
void projectUnitVectors(Basis& B) {
  static Basis Q;
  ModeReals d;
  for (int c = 1; c <= B.m; ++c) orthonormalise(B, c, c - 1);
  Q.n = B.n;
  Q.m = B.m;
  for (int i = 1; i <= B.n; ++i) {
    d[i] = 0;
    for (int j = 1; j <= B.m; ++j) d[i] += std::norm(B.V(i, j));
  }
  for (int c = 1; c <= B.m; ++c) {
    const int r = largestRow(d, B.n);
    for (int i = 1; i <= B.n; ++i) {
      Q.V(i, c) = 0.0;
      for (int j = 1; j <= B.m; ++j) Q.V(i, c) += B.V(i, j) * std::conj(B.V(r, j));
    }
    orthonormalise(Q, c, c - 1);
    for (int i = 1; i <= B.n; ++i) d[i] -= std::norm(Q.V(i, c));
  }
  for (int c = 1; c <= B.m; ++c) std::copy_n(Q.V.view().column(c), B.n, B.V.view().column(c));
}

// Quotients x^T Z x / x^T x of the space, with their vectors in terms of the columns of B. Returns
// false if a vector with x^T x = 0 prevents this.
bool quotients(ModeComplex& mu, LineMatrix& T, const Basis& B, CConstView Z) {
  static LineMatrix M, G, product;
  ModeInts exchanges;
  bilinear(M, B, Z);
  for (int b = 1; b <= B.m; ++b) {
    for (int a = 1; a <= B.m; ++a) {
      G(a, b) = 0.0;
      for (int i = 1; i <= B.n; ++i) G(a, b) += B.V(i, a) * B.V(i, b);
    }
  }
  if (!ZGETRF(G, B.m, exchanges)) return false;
  for (int i = 1; i <= B.m; ++i) {
    if (std::abs(G(i, i)) < ISOTROPIC) return false;
  }
  if (!ZGETRI(G, B.m, exchanges)) return false;
  CMATMUL(product, G, M, B.m);
  return ZGEEV(product, mu, T, B.m, BackSubstitution::ByColumns);
}

// The group with the largest quotient not taken yet; 0 if none is left.
int largestGroup(const ModeGroups& G, const ModeComplex& mu, const ModeInts& taken, int m) {
  int best = 0;
  for (int i = 1; i <= m; ++i) {
    if (G.of[i] != i || taken[i] != 0) continue;
    if (best == 0 || std::abs(mu[i]) > std::abs(mu[best])) best = i;
  }
  return best;
}

// Copies the columns of T of one group side by side and returns their number.
int gather(LineMatrix& out, const LineMatrix& T, const ModeGroups& G, int group, int m) {
  int k = 0;
  for (int j = 1; j <= m; ++j) {
    if (G.of[j] != group) continue;
    ++k;
    for (int i = 1; i <= m; ++i) out(i, k) = T(i, j);
  }
  return k;
}

} // namespace

void findGroups(ModeGroups& G, const ModeComplex& L, const ModeReals& KAPPA, int n) {
  double largest = 0;
  for (int i = 1; i <= n; ++i) {
    G.of[i] = i;
    G.size[i] = 0;
    largest = std::max(largest, std::abs(L[i]));
  }
  for (int a = 1; a <= n; ++a) {
    for (int b = a + 1; b <= n; ++b) {
      const double own = SAMEVALUE * std::max(std::abs(L[a]), std::abs(L[b]));
      const double rounding = UNCERTAINTY * std::max(KAPPA[a], KAPPA[b]) * largest;
      if (std::abs(L[a] - L[b]) <= own + rounding) unite(G, a, b, n);
    }
  }
  for (int i = 1; i <= n; ++i) ++G.size[G.of[i]];
}

void turnToRightAngles(Basis& B, CConstView Z) {
  static LineMatrix M, T;
  static Basis turned;
  bilinear(M, B, Z);
  if (!rightAngles(T, M, B.m)) return;
  combine(turned, B, T, B.m);
  for (int c = 1; c <= B.m; ++c) std::copy_n(turned.V.view().column(c), B.n, B.V.view().column(c));
}

void standardBasis(Basis& B, CConstView Z) {
  static LineMatrix T, some;
  static Basis space, part;
  ModeComplex mu;
  ModeReals kappa;
  ModeGroups G;
  ModeInts taken;
  projectUnitVectors(B);
  if (!quotients(mu, T, B, Z)) {
    turnToRightAngles(B, Z);
    return;
  }
  for (int i = 1; i <= B.m; ++i) kappa[i] = 1.0;
  findGroups(G, mu, kappa, B.m);
  space.n = B.n;
  space.m = B.m;
  for (int c = 1; c <= B.m; ++c) std::copy_n(B.V.view().column(c), B.n, space.V.view().column(c));
  int done = 0;
  for (int g = largestGroup(G, mu, taken, B.m); g != 0; g = largestGroup(G, mu, taken, B.m)) {
    taken[g] = 1;
    const int k = gather(some, T, G, g, B.m);
    combine(part, space, some, k);
    projectUnitVectors(part);
    turnToRightAngles(part, Z);
    for (int c = 1; c <= k; ++c) {
      ++done;
      std::copy_n(part.V.view().column(c), B.n, B.V.view().column(done));
    }
  }
}

} // namespace lcp

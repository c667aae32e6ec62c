// Dual active-set method of Goldfarb and Idnani. With the Cholesky factor G = U^T U the frame
// J = U^-1 satisfies J^T G J = I. The normals of the q active constraints are columns of
//
//   J^T [n_1 .. n_q] = [R; 0],   R upper triangular
//
// Constraint j with normal n (row j of A) is added using d = J^T n, with d1 = d(1..q) and d2 the
// rest:
//
//   z = -J2 d2        change of x per unit of the multiplier, J2 the columns of J from q + 1
//   r = -R^-1 d1      change of the multipliers of the active constraints
//   t2 = (b_j - n^T x) / (z^T n)    step to the constraint; none if |z| < TINY
//   t1 = min of -U / r over r < 0   step at which a multiplier becomes negative; the quotients of
//                                   all pairs of multiplier and change are formed
//
// The shorter step is taken. At t2 a Householder reflection of J2 reduces d2 to one element and
// makes d a column of R; at t1 a constraint is dropped, and Givens rotations make R triangular
// again.
#include "passivity/quadratic_program.h"

#include "base/finite.h"
#include "kernels/lapack.h"
#include "kernels/matrix_kernels.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace lcp {

namespace {

constexpr double TINY = 1.0000000036274937e-15; // 1e-15 rounded to single precision
constexpr int MAXPASSES = 500;
constexpr double NOSTEP = std::numeric_limits<double>::infinity();

// A vector with 1-based indices.
template <class T> struct Numbers {
  std::vector<T> elements;

  explicit Numbers(int n) : elements(static_cast<std::size_t>(n)) {}
  T& operator[](int i) {
    checkIndex(i, static_cast<int>(elements.size()));
    return elements[static_cast<std::size_t>(i - 1)];
  }
  T* data() { return elements.data(); }
};

// An N by N zero matrix.
struct Square {
  int ld;
  std::vector<double> elements;

  explicit Square(int N)
      : ld(std::max(N, 1)), elements(static_cast<std::size_t>(ld) * static_cast<std::size_t>(ld)) {}
  RView view() { return {elements.data(), ld}; }
};

struct Program {
  int N, M;
  RConstView A;
  const double* b;
  double* x;
};

// The state of the active set.
struct DualStore {
  Square frame, factor, copy;
  RView J, R;
  Numbers<int> ACT;     // active constraints in the order in which they were added, 0 beyond q
  Numbers<double> U;    // multipliers by constraint
  Numbers<char> ACTIVE; // whether a constraint is in ACT
  int q = 0;            // number of active constraints
  int j = 0;            // the constraint being added
  double UPLUS = 0;     // its multiplier
  Numbers<double> n, d, z, r, s, v, w;
  Numbers<int> IPIV;

  DualStore(int N, int M)
      : frame(N), factor(N), copy(N), J(frame.view()), R(factor.view()), ACT(N), U(M), ACTIVE(M),
        n(N), d(N), z(N), r(N), s(M), v(N), w(N), IPIV(N) {}
};

struct Step {
  double t1 = NOSTEP; // to the first multiplier that would become negative
  double t2 = NOSTEP; // to the constraint
  int drop = 0;       // position of the constraint dropped at t1
};

double dot(const double* a, const double* b, int n) {
  double sum = 0;
  for (int i = 0; i < n; ++i) sum += a[i] * b[i];
  return sum;
}

// y = y + f a
void addMultiple(double* y, double f, const double* a, int n) {
  for (int i = 0; i < n; ++i) y[i] += f * a[i];
}

// J = U^-1, x = -J J^T g.
void startUnconstrained(DualStore& S, const Program& P, RConstView G, const double* g) {
  const int N = P.N;
  if (N < 1) return;
  for (int k = 1; k <= N; ++k) std::copy_n(G.column(k), k, S.J.column(k));
  DPOTRF(S.J, N);
  DGETRF(S.J, N, S.IPIV.data());
  DGETRI(S.J, N, S.IPIV.data(), S.copy.elements.data(), N * N);
  for (int k = 1; k <= N; ++k) addMultiple(P.x, -dot(S.J.column(k), g, N), S.J.column(k), N);
}

// Selects the most violated constraint, among equal ones the last. Returns false if none is
// violated.
bool pickConstraint(DualStore& S, const Program& P) {
  for (int i = 1; i <= P.M; ++i) S.s[i] = -P.b[i - 1];
  for (int k = 1; k <= P.N; ++k) addMultiple(S.s.data(), P.x[k - 1], P.A.column(k), P.M);
  double largest = -NOSTEP;
  for (int i = 1; i <= P.M; ++i) {
    if (S.ACTIVE[i] || S.s[i] < largest) continue;
    largest = S.s[i];
    S.j = i;
  }
  if (!(largest > TINY)) return false;
  for (int k = 1; k <= P.N; ++k) S.n[k] = P.A(S.j, k);
  S.UPLUS = 0;
  return true;
}

// Computes d, z and r. Returns false if r is undefined.
bool findDirections(DualStore& S, int N) {
  for (int k = 1; k <= N; ++k) S.d[k] = dot(S.J.column(k), S.n.data(), N);
  std::fill_n(S.z.data(), N, 0.0);
  for (int k = S.q + 1; k <= N; ++k) addMultiple(S.z.data(), -S.d[k], S.J.column(k), N);
  if (S.q == 0) return true;
  if (!allFinite(S.R, S.q, S.q)) return false; // LAPACK must not be given such a matrix
  const RView C = S.copy.view();
  for (int k = 1; k <= S.q; ++k) {
    std::copy_n(S.R.column(k), S.q, C.column(k));
    S.r[k] = -S.d[k];
  }
  DGETRF(C, S.q, S.IPIV.data());
  DGETRS(C, S.q, S.IPIV.data(), S.r.data());
  return true;
}

Step stepLengths(DualStore& S, const Program& P) {
  Step step;
  const double* n = S.n.data();
  const double* z = S.z.data();
  if (std::sqrt(dot(z, z, P.N)) >= TINY)
    step.t2 = (P.b[S.j - 1] - dot(n, P.x, P.N)) / dot(z, n, P.N);
  for (int i = 1; i <= S.q; ++i) {
    for (int k = 1; S.r[i] < -TINY && k <= S.q; ++k) {
      if (!(S.r[k] < -TINY)) continue;
      const double t = -S.U[S.ACT[i]] / S.r[k];
      if (step.drop != 0 && !(t < step.t1)) continue;
      step.t1 = t;
      step.drop = i;
    }
  }
  return step;
}

// Adds d to R as column q + 1, by a reflection of the columns of J from there on.
void addConstraint(DualStore& S, int N) {
  const int p = ++S.q;
  S.ACT[p] = S.j;
  S.ACTIVE[S.j] = 1;
  S.U[S.j] = S.UPLUS;
  const int rest = N - p + 1;
  const double dp = S.d[p];
  const double length = std::sqrt(dot(&S.d[p], &S.d[p], rest));
  const double sigma = dp < 0 ? -length : length;
  const double nu = sigma * (dp + sigma);
  if (nu == 0) return;
  std::copy_n(&S.d[p], rest, &S.v[p]);
  S.v[p] = dp + sigma;
  std::copy_n(S.d.data(), p - 1, S.R.column(p));
  S.R(p, p) = -sigma;
  std::fill_n(S.w.data(), N, 0.0);
  for (int k = p; k <= N; ++k) addMultiple(S.w.data(), S.v[k], S.J.column(k), N);
  for (int k = p; k <= N; ++k) addMultiple(S.J.column(k), -S.v[k] / nu, S.w.data(), N);
}

// Applies the rotation of rows k and k + 1 of R that clears R(k + 1, k), and its transpose to J.
void rotate(DualStore& S, int k, int N) {
  const RView R = S.R;
  const double a = R(k, k), c = R(k + 1, k);
  if (c == 0) return;
  const double h = std::sqrt(a * a + c * c);
  const double cosine = a / h, sine = -c / h;
  R(k, k) = h;
  R(k + 1, k) = 0;
  for (int l = k + 1; l <= S.q; ++l) {
    const double upper = R(k, l), lower = R(k + 1, l);
    R(k, l) = cosine * upper - sine * lower;
    R(k + 1, l) = sine * upper + cosine * lower;
  }
  double* first = S.J.column(k);
  double* second = S.J.column(k + 1);
  for (int l = 0; l < N; ++l) {
    const double left = first[l], right = second[l];
    first[l] = cosine * left - sine * right;
    second[l] = sine * left + cosine * right;
  }
}

void dropConstraint(DualStore& S, int i, int N) {
  S.ACTIVE[S.ACT[i]] = 0;
  for (int k = i; k < S.q; ++k) {
    std::copy_n(S.R.column(k + 1), N, S.R.column(k));
    S.ACT[k] = S.ACT[k + 1];
  }
  std::fill_n(S.R.column(S.q), N, 0.0);
  S.ACT[S.q] = 0;
  --S.q;
  for (int k = i; k <= S.q; ++k) rotate(S, k, N);
}

// Takes the shorter step. Returns true if the constraint was added, false if another was dropped.
bool move(DualStore& S, const Program& P, const Step& step) {
  const double t = std::min(step.t1, step.t2);
  if (step.t2 != NOSTEP) addMultiple(P.x, t, S.z.data(), P.N);
  for (int k = 1; k <= S.q; ++k) S.U[S.ACT[k]] += t * S.r[k];
  S.UPLUS += t;
  const bool full = step.t2 != NOSTEP && t == step.t2;
  if (full) {
    addConstraint(S, P.N);
  } else {
    dropConstraint(S, step.drop, P.N);
  }
  return full;
}

// Runs the passes. Returns false if they end without a solution.
bool followConstraints(DualStore& S, const Program& P) {
  bool PICK = true;
  for (int pass = 1; pass <= MAXPASSES; ++pass) {
    if (PICK && !pickConstraint(S, P)) return true;
    if (!findDirections(S, P.N)) return false;
    const Step step = stepLengths(S, P);
    if ((step.t1 == NOSTEP && step.t2 == NOSTEP) || std::isnan(step.t2)) return false;
    PICK = move(S, P, step);
  }
  return true;
}

} // namespace

bool QPDUAL(int N, int M, RConstView G, const double* g, RConstView A, const double* b, double* x) {
  std::fill_n(x, N, 0.0);
  if (!allFinite(G, N, N) || !allFinite(g, N) || !allFinite(A, M, N) || !allFinite(b, M))
    return false;
  DualStore S(N, M);
  const Program P{N, M, A, b, x};
  startUnconstrained(S, P, G, g);
  return followConstraints(S, P) && allFinite(x, N);
}

} // namespace lcp

// Dual active-set method of Goldfarb and Idnani in terms of the scalar products M = A A^T. With the
// active constraints A and the Cholesky factor L L^T = M_AA, a constraint p that y misses by
// s = b_p - a_p y is added using
//
//   r = M_AA^-1 M_Ap               change of the active multipliers, with opposite sign
//   h = M_pp - M_pA r              squared part of a_p orthogonal to the active constraints
//   t1 = min of u_i / r_i over the active bounds with r_i > 0      step to a blocking bound
//   t2 = s / h                     step that meets p; none if a_p depends on the active ones
//
// The shorter step is taken: at t2 the constraint is added; at t1 an active bound leaves and the
// step continues. If there is neither, the constraint contradicts the active ones: the previous
// state is restored and the constraint is left out.
#include "improved/passivity/active_set_program.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

namespace lcp {

namespace {

constexpr double NOSTEP = std::numeric_limits<double>::infinity();
constexpr double DEPENDENT = 1e-12; // h over M_pp of a constraint that depends on the active ones
constexpr double MET = 1e-11;       // distance from a constraint that is met, over the length of y
constexpr int PASSESPERROW = 50;    // limit against cycles caused by rounding

using Reals = std::vector<double>;

std::size_t at(int i) { return static_cast<std::size_t>(i); }

struct ActiveSet {
  std::vector<int> rows; // constraints in the order in which they were added
  std::vector<Reals> L;  // rows of the factor
  Reals u;               // multipliers of all constraints
  Reals missing;         // amount by which y misses each constraint

  int size() const { return static_cast<int>(rows.size()); }
};

struct Search {
  const LeastVectorProgram& P;
  ActiveSet active, before; // before: state before the constraint is added, if others had to leave
  std::vector<char> closed; // active, or left out
  Reals w, r;               // L^-1 M_Ap and r
  double h = 0;
  bool moved = false; // a constraint has left, so `before` is valid

  const double* row(int i) const { return P.M.data() + at(i) * at(P.n); }
  double M(int i, int j) const { return row(i)[j]; }
};

// Scalar product of the first n numbers, in four partial sums.
double dot(const Reals& a, const Reals& b, std::size_t n) {
  double sum[4] = {};
  std::size_t k = 0;
  for (; k + 4 <= n; k += 4) {
    for (std::size_t lane = 0; lane < 4; ++lane) sum[lane] += a[k + lane] * b[k + lane];
  }
  for (; k < n; ++k) sum[0] += a[k] * b[k];
  return (sum[0] + sum[1]) + (sum[2] + sum[3]);
}

// Adds t to the multiplier of constraint i and updates `missing`.
void addMultiplier(Search& S, int i, double t) {
  S.active.u[at(i)] += t;
  const double* m = S.row(i);
  double* s = S.active.missing.data();
  for (int k = 0; k < S.P.n; ++k) s[k] -= t * m[k];
}

// Recomputes `missing` from the multipliers, free of accumulated rounding.
void measure(Search& S) {
  S.active.missing = S.P.b;
  for (const int i : S.active.rows) {
    const double u = S.active.u[at(i)];
    S.active.u[at(i)] = 0;
    addMultiplier(S, i, u);
  }
}

void findDirection(Search& S, int p) {
  const int q = S.active.size();
  S.w.assign(at(q), 0);
  S.h = S.M(p, p);
  for (int i = 0; i < q; ++i) {
    const Reals& l = S.active.L[at(i)];
    S.w[at(i)] = (S.M(p, S.active.rows[at(i)]) - dot(l, S.w, at(i))) / l[at(i)];
    S.h -= S.w[at(i)] * S.w[at(i)];
  }
  S.r = S.w;
  for (int i = q - 1; i >= 0; --i) {
    const double* l = S.active.L[at(i)].data();
    const double x = S.r[at(i)] /= l[i];
    double* r = S.r.data();
    for (int k = 0; k < i; ++k) r[k] -= l[k] * x;
  }
}

void join(Search& S, int p) {
  S.w.push_back(std::sqrt(S.h));
  S.active.L.push_back(S.w);
  S.active.rows.push_back(p);
  S.closed[at(p)] = 1;
}

// Removes row i from the factor; column rotations make the rows below it triangular again.
void leave(Search& S, int i) {
  ActiveSet& A = S.active;
  addMultiplier(S, A.rows[at(i)], -A.u[at(A.rows[at(i)])]);
  S.closed[at(A.rows[at(i)])] = 0;
  A.rows.erase(A.rows.begin() + i);
  A.L.erase(A.L.begin() + i);
  for (int k = i; k < A.size(); ++k) {
    const double a = A.L[at(k)][at(k)], c = A.L[at(k)][at(k) + 1];
    const double length = std::hypot(a, c);
    for (int row = k; row < A.size(); ++row) {
      double& left = A.L[at(row)][at(k)];
      double& right = A.L[at(row)][at(k) + 1];
      const double turned = (a * left + c * right) / length;
      right = (a * right - c * left) / length;
      left = turned;
    }
    A.L[at(k)].pop_back();
  }
}

struct Block {
  double t = NOSTEP;
  int position = -1;
};

// The first active bound whose multiplier reaches zero along the direction.
Block findBlock(const Search& S) {
  Block block;
  for (int i = 0; i < S.active.size(); ++i) {
    const int row = S.active.rows[at(i)];
    if (row < S.P.equalities || !(S.r[at(i)] > 0)) continue;
    const double t = S.active.u[at(row)] / S.r[at(i)];
    if (t < block.t) block = {t, i};
  }
  return block;
}

void step(Search& S, int p, double t) {
  for (int i = 0; i < S.active.size(); ++i) addMultiplier(S, S.active.rows[at(i)], -t * S.r[at(i)]);
  addMultiplier(S, p, t);
}

// Returns false if constraint p contradicts the active ones.
bool takeIn(Search& S, int p) {
  S.moved = false;
  while (true) {
    findDirection(S, p);
    const bool depends = !(S.h > DEPENDENT * S.M(p, p));
    const double t2 = depends ? NOSTEP : S.active.missing[at(p)] / S.h;
    const Block block = p < S.P.equalities ? Block{} : findBlock(S);
    if (t2 == NOSTEP && block.t == NOSTEP) return false;
    const double t = std::min(block.t, t2);
    if (t != t2 && !S.moved) {
      S.before = S.active;
      S.moved = true;
    }
    step(S, p, t);
    if (t == t2) break;
    leave(S, block.position);
  }
  join(S, p);
  return true;
}

double distance(const Search& S, int i) {
  const double length = S.M(i, i), missing = S.active.missing[at(i)];
  return length > 0 ? missing / std::sqrt(length) : missing;
}

// Length of y, where the active constraints are met.
double lengthOf(const Search& S) {
  double square = 0;
  for (const int i : S.active.rows) square += S.active.u[at(i)] * S.P.b[at(i)];
  return std::sqrt(std::max(square, 0.0));
}

// The open bound that is missed most; -1 if all are met.
int farthest(const Search& S) {
  double met = MET * lengthOf(S);
  int found = -1;
  for (int i = S.P.equalities; i < S.P.n; ++i) {
    if (S.closed[at(i)] != 0) continue;
    const double d = distance(S, i);
    if (d <= met) continue;
    met = d;
    found = i;
  }
  return found;
}

} // namespace

LeastVector leastVector(const LeastVectorProgram& P) {
  Search S{P, {}, {}, std::vector<char>(at(P.n)), {}, {}};
  S.active.u.assign(at(P.n), 0);
  S.active.missing = P.b;
  int contradicted = 0;
  const auto tryRow = [&](int p) {
    if (takeIn(S, p)) return;
    if (S.moved) {
      for (const int i : S.active.rows) S.closed[at(i)] = 0;
      std::swap(S.active, S.before);
      for (const int i : S.active.rows) S.closed[at(i)] = 1;
    }
    S.closed[at(p)] = 1;
    if (std::fabs(distance(S, p)) > MET * lengthOf(S)) ++contradicted;
  };
  for (int i = 0; i < P.equalities; ++i) tryRow(i);
  bool measured = false;
  for (int pass = 0; pass < PASSESPERROW * P.n; ++pass) {
    const int p = farthest(S);
    if (p < 0 && measured) break;
    if (p < 0) measure(S);
    measured = p < 0;
    if (p >= 0) tryRow(p);
  }
  return {S.active.u, contradicted};
}

} // namespace lcp

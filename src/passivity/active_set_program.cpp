// Dual active-set method of Goldfarb and Idnani in terms of the scalar products M = A A^T. With the
// active constraints A and the Cholesky factor L L^T = M_AA a constraint p that y misses by
// s = b_p - a_p y is taken in along
//
//   r = M_AA^-1 M_Ap               change of the active multipliers, less their sign
//   h = M_pp - M_pA r              square of the part of a_p off the active constraints
//   t1 = min of u_i / r_i over the active bounds with r_i > 0      only what blocks
//   t2 = s / h                     the step that meets p; none when a_p depends on the active ones
//
// The shorter step is taken: at t2 the constraint joins, at t1 an active bound leaves and the step
// goes on. With neither, the constraint contradicts the active ones: the state from before it is
// taken back and it is left out.
#include "passivity/active_set_program.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

namespace lcp {

namespace {

constexpr double NOSTEP = std::numeric_limits<double>::infinity();
constexpr double DEPENDENT = 1e-12; // h over M_pp of a constraint that depends on the active ones
constexpr double MET = 1e-11;       // distance, of the length of y, from a constraint that is met
constexpr int PASSESPERROW = 50;    // against rounding that goes round in a circle

using Reals = std::vector<double>;

std::size_t at(int i) { return static_cast<std::size_t>(i); }

struct ActiveSet {
  std::vector<int> rows; // constraints in the order of entry
  std::vector<Reals> L;  // rows of the factor
  Reals u;               // multipliers of all constraints

  int size() const { return static_cast<int>(rows.size()); }
};

struct Search {
  const LeastVectorProgram& P;
  ActiveSet active;
  std::vector<char> closed; // active, or left out
  Reals w, r;               // L^-1 M_Ap and r
  double h = 0;

  double M(int i, int j) const { return P.M[at(i) * at(P.n) + at(j)]; }
};

// By how much y misses constraint i.
double missing(const Search& S, int i) {
  double s = S.P.b[at(i)];
  for (const int j : S.active.rows) s -= S.M(i, j) * S.active.u[at(j)];
  return s;
}

void findDirection(Search& S, int p) {
  const int q = S.active.size();
  S.w.assign(at(q), 0);
  S.h = S.M(p, p);
  for (int i = 0; i < q; ++i) {
    const Reals& l = S.active.L[at(i)];
    double sum = S.M(p, S.active.rows[at(i)]);
    for (int k = 0; k < i; ++k) sum -= l[at(k)] * S.w[at(k)];
    S.w[at(i)] = sum / l[at(i)];
    S.h -= S.w[at(i)] * S.w[at(i)];
  }
  S.r = S.w;
  for (int i = q - 1; i >= 0; --i) {
    S.r[at(i)] /= S.active.L[at(i)][at(i)];
    for (int k = 0; k < i; ++k) S.r[at(k)] -= S.active.L[at(i)][at(k)] * S.r[at(i)];
  }
}

void join(Search& S, int p) {
  S.w.push_back(std::sqrt(S.h));
  S.active.L.push_back(S.w);
  S.active.rows.push_back(p);
  S.closed[at(p)] = 1;
}

// Takes row i out of the factor; rotations of the columns make the rows below it triangular again.
void leave(Search& S, int i) {
  ActiveSet& A = S.active;
  A.u[at(A.rows[at(i)])] = 0;
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

// The first active bound whose multiplier falls to zero on the way.
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
  for (int i = 0; i < S.active.size(); ++i) S.active.u[at(S.active.rows[at(i)])] -= t * S.r[at(i)];
  S.active.u[at(p)] += t;
}

// False when constraint p contradicts the active ones.
bool takeIn(Search& S, int p) {
  double s = missing(S, p);
  while (true) {
    findDirection(S, p);
    const bool depends = !(S.h > DEPENDENT * S.M(p, p));
    const double t2 = depends ? NOSTEP : s / S.h;
    const Block block = p < S.P.equalities ? Block{} : findBlock(S);
    if (t2 == NOSTEP && block.t == NOSTEP) return false;
    const double t = std::min(block.t, t2);
    step(S, p, t);
    if (t == t2) break;
    if (!depends) s -= t * S.h;
    leave(S, block.position);
  }
  join(S, p);
  return true;
}

double distance(const Search& S, int i) {
  const double length = S.M(i, i);
  return length > 0 ? missing(S, i) / std::sqrt(length) : missing(S, i);
}

// y^T y: the active constraints are met.
double lengthOf(const Search& S) {
  double square = 0;
  for (const int i : S.active.rows) square += S.active.u[at(i)] * S.P.b[at(i)];
  return std::sqrt(std::max(square, 0.0));
}

// The open bound that is farthest from being met; -1 when all are met.
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
  Search S{P, {}, std::vector<char>(at(P.n)), {}, {}};
  S.active.u.assign(at(P.n), 0);
  int contradicted = 0;
  const auto tryRow = [&](int p) {
    const ActiveSet before = S.active;
    if (takeIn(S, p)) return;
    for (const int i : S.active.rows) S.closed[at(i)] = 0;
    S.active = before;
    for (const int i : S.active.rows) S.closed[at(i)] = 1;
    S.closed[at(p)] = 1;
    if (std::fabs(distance(S, p)) > MET * lengthOf(S)) ++contradicted;
  };
  for (int i = 0; i < P.equalities; ++i) tryRow(i);
  for (int pass = 0; pass < PASSESPERROW * P.n; ++pass) {
    const int p = farthest(S);
    if (p < 0) break;
    tryRow(p);
  }
  return {S.active.u, contradicted};
}

} // namespace lcp

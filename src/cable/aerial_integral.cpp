//   SZ = integral of 2 exp(-H u) cos(X u) / (u + s),  s = sqrt(u^2 + G2)
//   SQ = integral of 2 exp(-H u) cos(X u) / (s + N2 u)
//   G2 = k2 (1 - eps) + j w mu0 / rho,  N2 = eps - j w mu0 / (rho k2),  k2 = w^2 mu0 e0
//
// Gauss-Legendre quadrature with five nodes on equal panels up to exp(-H u) = 0.001: at least 1000
// panels, and ten per wave of the cosine.
//
// The numerators depend only on the pair. They are computed at the first frequency that needs them
// and kept. The denominators depend on the frequency and the panel width, thus mostly on H: from
// the second frequency of a pair on, all kept pairs with the same panels are summed together, block
// by block, so that the roots of a block are shared. What does not fit into the store is computed
// at each frequency.
//
// A quotient with the denominator c + j d follows Smith's method; the part that depends only on the
// denominator is computed once:
//   |c| >= |d|  e = d / c, den = d e + c, (1 - j e) / den
//   |c| < |d|   e = c / d, den = c e + d, (e - j) / den
#include "cable/aerial_integral.h"

#include "base/big_store.h"
#include "base/constants.h"
#include "base/table.h"
#include "cable/complex_root.h"
#include "store/rundata.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace lcp {

namespace {

constexpr double LOG1000 = 6.907755278982137;
constexpr double LEASTPANELS = 1000.0;
constexpr double TWOPI12 = 6.28318530718;
constexpr double WIDESTPANEL = 6283185307.179999; // for bodies directly above each other
constexpr double SAMEPLACE = 1e-20;               // m
constexpr double SMALLK2 = 1e-20;
constexpr double MOSTPANELS = 1e8;

constexpr int NODES = 5;
constexpr double NODE[NODES] = {0.9061798459, 0.5384693101, 0.0, -0.5384693101, -0.9061798459};
constexpr double WEIGHT[NODES] = {0.236926885, 0.4786286705, 0.5688888889, 0.4786286705,
                                  0.236926885};

// ---- Panels, and values at their nodes

struct Panels {
  bool operator==(const Panels&) const = default;

  double width;
  int count;
};

double nodeOf(const Panels& P, int k, int n) {
  return (k - 1) * P.width + 0.5 * P.width * (1.0 + NODE[n]);
}

// A block of panels, small enough that the numerators and denominators of its nodes stay in the
// cache.
constexpr int BLOCKPANELS = 64;
constexpr int BLOCKNODES = BLOCKPANELS * NODES;

struct Block {
  int first; // first panel
  int last;

  int nodes() const { return (last - first + 1) * NODES; }
};

Block blockAt(const Panels& P, int first) {
  return {first, std::min(first + BLOCKPANELS - 1, P.count)};
}

// Half the panel width times the node's weight times 2 exp(-H u) cos(X u).
void setNumerators(const Panels& P, Block b, double X, double H, double* a) {
  for (int k = b.first; k <= b.last; ++k) {
    for (int n = 0; n < NODES; ++n) {
      const double t = nodeOf(P, k, n);
      *a++ = WEIGHT[n] * P.width * std::exp(-H * t) * std::cos(X * t);
    }
  }
}

// ---- Soil

// Soil with displacement currents.
struct Propagation {
  Complex G2;
  Complex N2;
  bool potential; // false below 0.005 Hz, where N2 is so large that SQ vanishes
};

Propagation propagationAt(double w) {
  const Ground& G = RUNDATA.ground;
  const double k2 = MU0EPS0 * w * w;
  const double conduction = MU0 / G.GRHO * w;
  Propagation soil{{k2 - G.GEPSR * k2, conduction}, 0.0, k2 > SMALLK2};
  if (soil.potential) soil.N2 = Complex(-G.GEPSR * k2, conduction) / -k2;
  return soil;
}

// Values at the nodes of a block.
using NodeValues = double[BLOCKNODES];

// Reciprocals (p + j q) / den of c + j d.
struct Reciprocals {
  NodeValues p;
  NodeValues q;
  NodeValues den;
};

struct Denominators {
  NodeValues t;
  NodeValues sre; // s
  NodeValues sim;
  NodeValues c; // the current denominator
  NodeValues d;
  Reciprocals z; // of u + s
  Reciprocals q; // of s + N2 u
};

void setReciprocals(const NodeValues& c, const NodeValues& d, int nodes, Reciprocals& R) {
  for (int at = 0; at < nodes; ++at) {
    const bool steep = std::fabs(c[at]) < std::fabs(d[at]);
    const double large = steep ? d[at] : c[at];
    const double small = steep ? c[at] : d[at];
    const double e = small / large;
    R.den[at] = small * e + large;
    R.p[at] = steep ? e : 1.0;
    R.q[at] = steep ? -1.0 : -e;
  }
}

// The roots s. If the squares are in the plain range and have Re > 0, which holds in all but the
// first blocks of a soil of high permittivity, real arithmetic is used, which vectorises.
void setRoots(const Propagation& soil, int nodes, Denominators& D) {
  const double re = soil.G2.real();
  const double im = soil.G2.imag();
  // Nodes descend within a panel, panels ascend.
  const double least = D.t[NODES - 1] * D.t[NODES - 1] + re;
  const double most = D.t[nodes - NODES] * D.t[nodes - NODES] + re;
  if (isPlain(least) && isPlain(most) && isPlain(im)) {
    for (int at = 0; at < nodes; ++at) {
      const double x = D.t[at] * D.t[at] + re;
      D.sre[at] = std::sqrt(0.5 * (plainMagnitude(x, im) + x));
      D.sim[at] = 0.5 * (im / D.sre[at]);
    }
    return;
  }
  for (int at = 0; at < nodes; ++at) {
    const Complex s = ROOT(D.t[at] * D.t[at] + soil.G2);
    D.sre[at] = s.real();
    D.sim[at] = s.imag();
  }
}

void setDenominators(const Panels& P, Block b, const Propagation& soil, Denominators& D) {
  const int nodes = b.nodes();
  for (int k = b.first; k <= b.last; ++k) {
    for (int n = 0; n < NODES; ++n) D.t[(k - b.first) * NODES + n] = nodeOf(P, k, n);
  }
  setRoots(soil, nodes, D);
  for (int at = 0; at < nodes; ++at) D.c[at] = D.t[at] + D.sre[at];
  setReciprocals(D.c, D.sim, nodes, D.z);
  if (!soil.potential) return;
  for (int at = 0; at < nodes; ++at) {
    D.c[at] = D.sre[at] + soil.N2.real() * D.t[at];
    D.d[at] = D.sim[at] + soil.N2.imag() * D.t[at];
  }
  setReciprocals(D.c, D.d, nodes, D.q);
}

// Adds node by node in order. The four sums are independent, so they run in parallel.
void addBoth(const double* a, const Denominators& D, int nodes, AerialSums& sum) {
  double zre = sum.SZ.real();
  double zim = sum.SZ.imag();
  double qre = sum.SQ.real();
  double qim = sum.SQ.imag();
  for (int at = 0; at < nodes; ++at) {
    zre += a[at] * D.z.p[at] / D.z.den[at];
    zim += a[at] * D.z.q[at] / D.z.den[at];
    qre += a[at] * D.q.p[at] / D.q.den[at];
    qim += a[at] * D.q.q[at] / D.q.den[at];
  }
  sum = {{zre, zim}, {qre, qim}};
}

void addFirst(const double* a, const Denominators& D, int nodes, AerialSums& sum) {
  double re = sum.SZ.real();
  double im = sum.SZ.imag();
  for (int at = 0; at < nodes; ++at) {
    re += a[at] * D.z.p[at] / D.z.den[at];
    im += a[at] * D.z.q[at] / D.z.den[at];
  }
  sum.SZ = {re, im};
}

void addBlock(const double* a, const Denominators& D, Block b, bool potential, AerialSums& sum) {
  potential ? addBoth(a, D, b.nodes(), sum) : addFirst(a, D, b.nodes(), sum);
}

// ---- Pairs

constexpr int MOSTPAIRS = LDMAT * (LDMAT + 1) / 2;
constexpr int MOSTNODES = 1 << 23;

struct Pair {
  double X;
  double H;
  Panels panels;
  int before; // number of numerators of the pairs before it
  bool summed;
  AerialSums sum;
};

struct AerialStore {
  // Parameters that the sums belong to
  double w;
  double GRHO;
  double GEPSR;

  int pairs;
  int nodes; // numerators of all pairs together
  int found; // last pair looked up; the next one usually follows it
  Table<Pair, MOSTPAIRS> pair;
  Table<double, MOSTNODES> numerators;
  Denominators denominators;
  double anew[BLOCKNODES]; // numerators of a pair that is not kept
};

// Mapped when a system first needs it: few have aerial pairs.
AerialStore* AERIAL = nullptr;

AerialStore& aerial() {
  if (AERIAL == nullptr) AERIAL = &bigStore<AerialStore>();
  return *AERIAL;
}

// Marks all sums as outdated when the frequency or the soil has changed.
void turnTo(double w) {
  AerialStore& S = aerial();
  const Ground& G = RUNDATA.ground;
  if (S.w == w && S.GRHO == G.GRHO && S.GEPSR == G.GEPSR) return;
  S.w = w;
  S.GRHO = G.GRHO;
  S.GEPSR = G.GEPSR;
  for (int k = 1; k <= S.pairs; ++k) S.pair[k].summed = false;
}

// Index of a kept pair; 0 if it is not kept.
int findPair(double X, double H) {
  AerialStore& S = aerial();
  for (int step = 1; step <= S.pairs; ++step) {
    const int k = (S.found + step - 1) % S.pairs + 1;
    if (S.pair[k].X == X && S.pair[k].H == H) return S.found = k;
  }
  return 0;
}

// Adds a pair; returns 0 if there is no room.
int keepPair(double X, double H, const Panels& P) {
  AerialStore& S = aerial();
  if (S.pairs == MOSTPAIRS || P.count > (MOSTNODES - S.nodes) / NODES) return 0;
  S.pair[++S.pairs] = {X, H, P, S.nodes, false, {}};
  setNumerators(P, {1, P.count}, X, H, &S.numerators[S.nodes + 1]);
  S.nodes += P.count * NODES;
  return S.found = S.pairs;
}

// Sums all kept pairs with panels P that have no sum yet.
void sumPairs(const Panels& P, const Propagation& soil) {
  AerialStore& S = aerial();
  const auto wanted = [&P](const Pair& p) { return !p.summed && p.panels == P; };
  for (int k = 1; k <= S.pairs; ++k) {
    if (wanted(S.pair[k])) S.pair[k].sum = {};
  }
  for (int first = 1; first <= P.count; first += BLOCKPANELS) {
    const Block b = blockAt(P, first);
    setDenominators(P, b, soil, S.denominators);
    for (int k = 1; k <= S.pairs; ++k) {
      Pair& p = S.pair[k];
      if (!wanted(p)) continue;
      const double* a = &S.numerators[p.before + (first - 1) * NODES + 1];
      addBlock(a, S.denominators, b, soil.potential, p.sum);
    }
  }
  for (int k = 1; k <= S.pairs; ++k) {
    if (wanted(S.pair[k])) S.pair[k].summed = true;
  }
}

AerialSums sumAnew(double X, double H, const Panels& P, const Propagation& soil) {
  AerialStore& S = aerial();
  AerialSums sum{};
  for (int first = 1; first <= P.count; first += BLOCKPANELS) {
    const Block b = blockAt(P, first);
    setDenominators(P, b, soil, S.denominators);
    setNumerators(P, b, X, H, S.anew);
    addBlock(S.anew, S.denominators, b, soil.potential, sum);
  }
  return sum;
}

} // namespace

AerialSums AERIALSUM(double X, double H, double w) {
  const double T = LOG1000 / H;
  const double wave = X < SAMEPLACE ? WIDESTPANEL : TWOPI12 / (10.0 * X);
  const double width = std::min(T / LEASTPANELS, wave);
  const double count = std::ceil(T / width);
  if (!(count < MOSTPANELS)) return {std::numeric_limits<double>::quiet_NaN(), 0.0};
  const Panels P{width, static_cast<int>(count) - 1};
  turnTo(w);
  int k = findPair(X, H);
  if (k == 0) k = keepPair(X, H, P);
  if (k == 0) return sumAnew(X, H, P, propagationAt(w));
  if (!aerial().pair[k].summed) sumPairs(P, propagationAt(w));
  return aerial().pair[k].sum;
}

void FORGETAERIAL() {
  if (AERIAL != nullptr) AERIAL->pairs = AERIAL->nodes = AERIAL->found = 0;
}

} // namespace lcp

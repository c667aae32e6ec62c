// With A = I + H and B = I - H the half (I - H)^-1 (I + H) Yc has a Hermitian part that is not
// negative exactly when A Yc B^H + B Yc^H A^H is not, and the other half with A and B the other way
// round. With G = Yc + Yc^H and K = Yc - Yc^H the two are
//
//   W = G - H G H^H +- (H K + (H K)^H)
//
// without an inverse, smooth through all resonances, and with a Cholesky factor as the test of the
// sign. Between two points W is nearly W_m + t D + t^2 C, -1 <= t <= 1, with the middle W_m = L L^H
// and the bend C = (W_a + W_b) / 2 - W_m. For t >= 0 that is
//
//   (1 - t) (W_m - t C) + t W_b
//
// which is positive when |L^-1 C L^-H| < 1, whatever the size of the eigenvalues: the bend is
// measured by the matrix itself, so that losses that are a millionth of Yc need no more points than
// large ones.
#include "improved/passivity/wave_power.h"

#include "base/constants.h"

#include <cmath>

namespace lcp {

namespace {

constexpr double CAUTION = 4;      // times the bend: what a stretch may hide
constexpr double ROUNDING = 1e-15; // of Yc, in the sums of W
constexpr double SHARE = 0.5;      // of Re Yc that settled waves may reach

std::size_t at(int i) { return static_cast<std::size_t>(i); }

// Real matrices x_k in the order of the lanes of a matrix.
struct Packing {
  int lanes;
  std::size_t all;
  std::vector<RealLanes>& x;

  Packing(std::vector<RealLanes>& store, int n, std::size_t functions)
      : lanes(PlanarMatrix(n).columnLanes()), all(PlanarMatrix(n).allLanes()), x(store) {
    x.assign(functions * all, RealLanes{});
  }
  void set(std::size_t k, int r, int c, double value) const {
    x[k * all + at(c - 1) * at(lanes) + at((r - 1) / LANES)].x[(r - 1) % LANES] = value;
  }
};

template <class Residues>
void packResidues(const TiedBasis& B, const Residues& R, const Packing& x, int n) {
  for (std::size_t m = 0; m < B.pole.size(); ++m) {
    const int pole = static_cast<int>(m) + 1;
    const bool second = B.kind[m] == PAIRSECOND;
    for (int c = 1; c <= n; ++c) {
      for (int r = 1; r <= n; ++r)
        x.set(m, r, c, second ? R[pole - 1](r, c).imag() : R[pole](r, c).real());
    }
  }
}

// W of both halves, from G, H and K.
void formHalves(WavePower& P, const PlanarMatrix& H, const PlanarMatrix& G, const PlanarMatrix& K) {
  const int n = H.order();
  static PlanarMatrix HT, GH, HGH, HK;
  for (PlanarMatrix* M : {&HT, &GH, &HGH, &HK}) {
    if (M->order() != n) *M = PlanarMatrix(n);
  }
  adjoint(HT, H);
  multiply(GH, G, HT);
  multiply(HGH, H, GH);
  multiply(HK, H, K);
  for (int c = 1; c <= n; ++c) {
    for (int r = c; r <= n; ++r) {
      const Complex even = G(r, c) - 0.5 * (HGH(r, c) + std::conj(HGH(c, r)));
      const Complex odd = HK(r, c) + std::conj(HK(c, r));
      P.W[AGAINST].set(r, c, even + odd);
      P.W[ALIKE].set(r, c, even - odd);
      P.W[AGAINST].set(c, r, std::conj(even + odd));
      P.W[ALIKE].set(c, r, std::conj(even - odd));
    }
  }
}

// Whether G stays positive whatever the waves of norm h take off.
bool isSettled(const PlanarMatrix& H, const PlanarMatrix& G, const PlanarMatrix& K,
               PlanarMatrix& work) {
  const double h = normOf(H);
  if (!(h < 1)) return false;
  const double most = h * h * normOf(G) + 2 * h * normOf(K);
  return factorise(work, G, -most / SHARE);
}

} // namespace

PackedModel packModel() {
  const EnforcementStore& E = ENFORCE;
  PackedModel M{E.NC, propagationBasis(), admittanceBasis(), {}, {}};
  packResidues(M.ofH, E.FRES, Packing(M.H, M.n, M.ofH.pole.size()), M.n);
  const Packing y(M.Yc, M.n, at(M.ofYc.N));
  packResidues(M.ofYc, E.ERY, y, M.n);
  for (int c = 1; c <= M.n; ++c) {
    for (int r = 1; r <= M.n; ++r) y.set(M.ofYc.pole.size(), r, c, E.EDY(r, c));
  }
  return M;
}

WavePower wavePowerAt(const PackedModel& M, double f) {
  const int n = M.n;
  const Complex s(0, TWOPI * f);
  PlanarMatrix H(n), Yc(n), G(n), K(n);
  WavePower P;
  P.f = f;
  for (const Half half : {AGAINST, ALIKE}) P.W[half] = P.L[half] = PlanarMatrix(n);
  addWeighted(H, M.H, plainBasis(M.ofH, s));
  addWeighted(Yc, M.Yc, plainBasis(M.ofYc, s));
  adjoint(K, Yc);
  for (int c = 1; c <= n; ++c) {
    StoredLanes* g = G.column(c);
    StoredLanes* k = K.column(c);
    for (int l = 0; l < G.columnLanes(); ++l) {
      g[l] = Yc.column(c)[l] + k[l];
      k[l] = Yc.column(c)[l] - k[l];
    }
  }
  P.size = normOf(Yc);
  formHalves(P, H, G, K);
  for (const Half half : {AGAINST, ALIKE})
    P.positive[half] = factorise(P.L[half], P.W[half], ROUNDING * P.size);
  P.settled = P.positive[AGAINST] && P.positive[ALIKE] && isSettled(H, G, K, Yc);
  return P;
}

bool isPositiveBetween(const WavePower& a, const WavePower& middle, const WavePower& b, Half half) {
  const int n = middle.W[half].order();
  PlanarMatrix C(n), Z(n);
  for (int c = 1; c <= n; ++c) {
    for (int l = 0; l < C.columnLanes(); ++l) {
      C.column(c)[l] =
          0.5 * (a.W[half].column(c)[l] + b.W[half].column(c)[l]) - middle.W[half].column(c)[l];
    }
  }
  solveLower(middle.L[half], C);
  adjoint(Z, C);
  solveLower(middle.L[half], Z);
  return CAUTION * normOf(Z) < 1;
}

} // namespace lcp

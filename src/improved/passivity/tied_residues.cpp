#include "improved/passivity/tied_residues.h"

#include "base/constants.h"
#include "kernels/lapack.h"

#include <cmath>

namespace lcp {

namespace {

// Added to the diagonal of the scaled G, whose diagonal is 1: delays close to each other give
// almost equal basis functions, and large opposite residues would otherwise cost nothing.
constexpr double DAMPING = 1e-8;

std::size_t at(int i) { return static_cast<std::size_t>(i); }

// A pair starts after a real pole or a whole pair.
void classify(TiedBasis& B) {
  for (std::size_t m = 0; m < B.pole.size(); ++m) {
    const bool second = m > 0 && B.kind[m - 1] == PAIRFIRST;
    B.kind.push_back(B.pole[m].imag() == 0 ? REALPOLE : second ? PAIRSECOND : PAIRFIRST);
  }
}

// The products of z with each lane, with and without conjugates, summed.
struct TwoProducts {
  StoredLanes plain, turned;

  void add(Complex z, const StoredLanes& a) {
    const double re = z.real(), im = z.imag();
    const Lanes rere = a.re * re, imim = a.im * im, reim = a.im * re, imre = a.re * im;
    plain.re += rere - imim;
    plain.im += reim + imre;
    turned.re += rere + imim;
    turned.im += imre - reim;
  }
};

inline TwoProducts products(const Complexes& z, const StoredLanes* a) {
  TwoProducts sum;
  for (std::size_t i = 0; i < z.size(); ++i) sum.add(z[i], a[i]);
  return sum;
}

inline TwoProducts operator*(const TwoProducts& a, const TwoProducts& b) {
  return {a.plain * b.plain, a.turned * b.turned};
}

// Adds those of the row with a group of others.
inline void addGroupProducts(const RankOneRow& row, const StoredLanes* l, const PackedRows& others,
                             double* sums) {
  const StoredLanes* q = l + others.n;
  TwoProducts F = products(row.l, l) * products(row.q, q);
  if (others.symmetric) {
    const TwoProducts crossed = products(row.l, q) * products(row.q, l);
    F = {0.5 * (F.plain + crossed.plain), 0.5 * (F.turned + crossed.turned)};
  }
  const TwoProducts all = F * products(row.phi, q + others.n);
  const Lanes sum = 0.5 * (all.plain.re + all.turned.re);
  for (int lane = 0; lane < LANES; ++lane) sums[lane] += sum[lane];
}

} // namespace

TiedBasis propagationBasis() {
  const EnforcementStore& E = ENFORCE;
  TiedBasis B;
  for (int m = 1; m <= E.TOTORD; ++m) {
    B.pole.push_back(E.FPOLE[m]);
    B.tau.push_back(E.FTAU[m]);
  }
  B.N = E.TOTORD;
  classify(B);
  return B;
}

TiedBasis admittanceBasis() {
  const EnforcementStore& E = ENFORCE;
  TiedBasis B;
  for (int m = 1; m <= E.ENY; ++m) B.pole.push_back(E.EPY[m]);
  B.tau.assign(B.pole.size(), 0);
  B.constant = true;
  B.N = E.ENY + 1;
  classify(B);
  return B;
}

void whiten(TiedBasis& B, const std::vector<double>& f, const std::vector<double>& weight) {
  B.U.assign(at(B.N) * at(B.N), 0);
  const RView G(B.U.data(), B.N);
  for (std::size_t k = 0; k < f.size(); ++k) {
    const Complexes phi = plainBasis(B, Complex(0, TWOPI * f[k]));
    for (int j = 1; j <= B.N; ++j) {
      for (int i = 1; i <= j; ++i)
        G(i, j) += weight[k] * (phi[at(i - 1)] * std::conj(phi[at(j - 1)])).real();
    }
  }
  B.scale.assign(at(B.N), 0);
  for (int j = 1; j <= B.N; ++j) B.scale[at(j - 1)] = 1 / std::sqrt(G(j, j));
  for (int j = 1; j <= B.N; ++j) {
    for (int i = 1; i <= j; ++i) G(i, j) *= B.scale[at(i - 1)] * B.scale[at(j - 1)];
    G(j, j) += DAMPING;
  }
  DPOTRF(G, B.N);
}

// Those of real unknowns, see the basis of the fits.
Complexes plainBasis(const TiedBasis& B, Complex s) {
  Complexes phi(at(B.N), 1.0);
  double tau = 0;
  Complex delay = 1;
  for (std::size_t m = 0; m < B.pole.size(); ++m) {
    if (B.tau[m] != tau) { // poles of a group stand side by side
      tau = B.tau[m];
      delay = std::exp(-s * tau);
    }
    const Complex p = B.pole[m];
    if (B.kind[m] == REALPOLE) {
      phi[m] = delay * poleTerm(s, p);
    } else if (B.kind[m] == PAIRFIRST) {
      const Complex first = poleTerm(s, p), second = poleTerm(s, std::conj(p));
      phi[m] = delay * (first + second);
      phi[m + 1] = delay * Complex(0, 1) * (first - second);
    }
  }
  return phi;
}

Complexes basisAt(const TiedBasis& B, Complex s) {
  Complexes phi = plainBasis(B, s);
  const RConstView U(B.U.data(), B.N);
  for (int j = 1; j <= B.N; ++j) {
    Complex sum = B.scale[at(j - 1)] * phi[at(j - 1)];
    for (int i = 1; i < j; ++i) sum -= U(i, j) * phi[at(i - 1)];
    phi[at(j - 1)] = sum / U(j, j);
  }
  return phi;
}

void PackedRows::add(const RankOneRow& row) {
  const std::size_t group = 2 * n + N, lane = rows % LANES;
  if (lane == 0) elements.resize(elements.size() + group);
  StoredLanes* to = elements.data() + elements.size() - group;
  for (const Complexes* part : {&row.l, &row.q, &row.phi}) {
    for (std::size_t i = 0; i < part->size(); ++i) to[i].set(static_cast<int>(lane), (*part)[i]);
    to += part == &row.phi ? N : n;
  }
  ++rows;
}

LCP_WIDTHS("avx2")
void addRowProducts(const RankOneRow& row, const PackedRows& others, std::size_t count,
                    double* products) {
  if (row.l.empty()) return;
  const std::size_t group = 2 * others.n + others.N;
  const StoredLanes* l = others.elements.data();
  for (std::size_t first = 0; first < count; first += LANES, l += group)
    addGroupProducts(row, l, others, products + first);
}

std::vector<double> changeOf(const TiedBasis& B, const std::vector<RankOneRow>& rows,
                             const std::vector<double>& u, int r, int c, bool symmetric) {
  std::vector<double> x(at(B.N), 0);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const RankOneRow& a = rows[i];
    if (u[i] == 0 || a.l.empty()) continue;
    Complex w = a.l[at(r - 1)] * a.q[at(c - 1)];
    if (symmetric) w = 0.5 * (w + a.l[at(c - 1)] * a.q[at(r - 1)]);
    for (std::size_t k = 0; k < x.size(); ++k) x[k] += u[i] * (w * a.phi[k]).real();
  }
  const RConstView U(B.U.data(), B.N);
  for (int j = B.N; j >= 1; --j) {
    double& v = x[at(j - 1)];
    v /= U(j, j);
    for (int i = 1; i < j; ++i) x[at(i - 1)] -= U(i, j) * v;
    v *= B.scale[at(j - 1)];
  }
  return x;
}

Complex residueChange(const TiedBasis& B, const std::vector<double>& x, std::size_t m) {
  if (B.kind[m] == REALPOLE) return x[m];
  return B.kind[m] == PAIRSECOND ? Complex(x[m - 1], -x[m]) : Complex(x[m], x[m + 1]);
}

} // namespace lcp

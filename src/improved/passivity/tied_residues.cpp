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

// Pairs start behind a real pole or a whole pair.
void classify(TiedBasis& B) {
  for (std::size_t m = 0; m < B.pole.size(); ++m) {
    const bool second = m > 0 && B.kind[m - 1] == PAIRFIRST;
    B.kind.push_back(B.pole[m].imag() == 0 ? REALPOLE : second ? PAIRSECOND : PAIRFIRST);
  }
}

Complex unconjugated(const Complexes& a, const Complexes& b) {
  Complex sum = 0;
  for (std::size_t i = 0; i < a.size(); ++i) sum += a[i] * b[i];
  return sum;
}

Complex conjugated(const Complexes& a, const Complexes& b) {
  Complex sum = 0;
  for (std::size_t i = 0; i < a.size(); ++i) sum += a[i] * std::conj(b[i]);
  return sum;
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

double rowProduct(const RankOneRow& a, const RankOneRow& b, bool symmetric) {
  Complex plain = unconjugated(a.l, b.l) * unconjugated(a.q, b.q);
  Complex turned = conjugated(a.l, b.l) * conjugated(a.q, b.q);
  if (symmetric) {
    plain = 0.5 * (plain + unconjugated(a.l, b.q) * unconjugated(a.q, b.l));
    turned = 0.5 * (turned + conjugated(a.l, b.q) * conjugated(a.q, b.l));
  }
  return 0.5 * (plain * unconjugated(a.phi, b.phi) + turned * conjugated(a.phi, b.phi)).real();
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

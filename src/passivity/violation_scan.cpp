#include "passivity/violation_scan.h"

#include "base/console.h"
#include "base/constants.h"
#include "base/finite.h"
#include "base/number_forms.h"
#include "kernels/lapack.h"
#include "passivity/nodal_admittance.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <numeric>

namespace lcp {

namespace {

constexpr double PZERO = single(1e-20); // smaller sums and differences of violations are zero
constexpr double CSPACE = single(0.1);  // smallest relative distance of constraint frequencies
constexpr double NOCURVE = 1e-20;       // for an H up to this, no relative change is computed

// Eigenvalues of the Hermitian part of Y11 + sign Y12, stored in W.
void addHalf(double* W, CConstView Y11, CConstView Y12, double sign, int n) {
  static LineMatrix G;
  const auto y = [&](int i, int j) { return Y11(i, j) + sign * Y12(i, j); };
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= j; ++i) {
      G(i, j) = (y(i, j) + std::conj(y(j, i))) / 2.0;
      G(j, i) = std::conj(G(i, j));
    }
  }
  ZHEEV(G, W, n);
}

// For equal blocks the eigenvalues of [A B; B A] are those of A + B (ends driven in phase) and of A
// - B (ends driven in opposition).
double violationAt(double f, double PEIGTOL, Residues which) {
  static LineMatrix Y11, Y12;
  static NodalReals lambda;
  const int n = ENFORCE.NC;
  double* first = lambda.data();
  PASSYN(f, Y11, Y12, which);
  addHalf(first, Y11, Y12, 1.0, n);
  addHalf(first + n, Y11, Y12, -1.0, n);
  if (anyNaN(first, 2 * n)) return 0;
  std::stable_sort(first, first + 2 * n,
                   [](double a, double b) { return std::fabs(a) < std::fabs(b); });
  double sum = 0;
  for (int i = 1; i <= n; ++i) {
    if (lambda[i] < PEIGTOL) sum += std::fabs(lambda[i]);
  }
  return sum;
}

void addPoint(int k) {
  ViolationPoints& P = ENFORCE.VPOINT;
  if (P.count == MAXVIOLATED) return;
  ++P.count;
  P.value[P.count] = ENFORCE.V[k];
  P.frequency[P.count] = ENFORCE.EGRID.f[k];
}

// Sorts in descending order.
void SORTDOWN(double* x, int n) { std::sort(x, x + n, std::greater<>()); }

} // namespace

void PASSVIOL(double PEIGTOL, Residues which) {
  EnforcementStore& E = ENFORCE;
  for (int k = 1; k <= E.EGRID.NGRID; ++k) E.V[k] = violationAt(E.EGRID.f[k], PEIGTOL, which);
  findPeaks();
}

void findPeaks() {
  EnforcementStore& E = ENFORCE;
  const double* first = E.V.data();
  const double* last = first + E.EGRID.NGRID;
  E.VPOINT.count = 0;
  if (std::accumulate(first, last, 0.0) <= PZERO) return;
  for (int k = 2; k < E.EGRID.NGRID; ++k) {
    if (E.V[k] - E.V[k - 1] > PZERO && E.V[k + 1] - E.V[k] < -PZERO) addPoint(k);
  }
  if (E.VPOINT.count == 0) addPoint(1 + static_cast<int>(std::max_element(first, last) - first));
}

void PASSLIST() {
  EnforcementStore& E = ENFORCE;
  if (E.VPOINT.count == 0) return;
  Table<double, MAXVIOLATED> work = E.CFREQ;
  int n = E.NCFREQ;
  for (int i = 1; i <= E.VPOINT.count && n < MAXVIOLATED; ++i) work[++n] = E.VPOINT.frequency[i];
  SORTDOWN(work.data(), n);
  E.NCFREQ = 0;
  for (int i = 1; i <= n; ++i) {
    const double f = work[i];
    if (E.NCFREQ == 0 || std::fabs(E.CFREQ[E.NCFREQ] - f) > CSPACE * std::fabs(f))
      E.CFREQ[++E.NCFREQ] = f;
  }
}

void PASSTAB() {
  const ViolationPoints& P = ENFORCE.VPOINT;
  console::line("    Frequency [Hz]         Negative eigenvalue minimas");
  console::line("    ..............           ............ ");
  for (int i = 1; i <= P.count; ++i) {
    console::print("       {}       {}", pointedField(P.frequency[i], 14, 7),
                   pointedField(-P.value[i], 14, 7));
  }
}

double PASSERR() {
  static LineMatrix H, fitted;
  const EnforcementStore& E = ENFORCE;
  double change = 0, scale = 0;
  for (int k = 1; k <= E.NS; ++k) {
    const Complex s(0, SINGLETWOPI * E.FFIT[k]);
    propagationAt(E.FRES, s, H);
    propagationAt(E.FORIG, s, fitted);
    for (int c = 1; c <= E.NC; ++c) {
      for (int r = 1; r <= E.NC; ++r) {
        change = larger(change, std::abs(H(r, c) - fitted(r, c)));
        scale = larger(scale, std::abs(fitted(r, c)));
      }
    }
  }
  const double ERR = INPERCENT * (scale > NOCURVE ? change / scale : change);
  console::print("  Maximum abs. error  {} %", ERR);
  return ERR;
}

} // namespace lcp

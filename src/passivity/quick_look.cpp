// The own admittances of the line with both ends alike or against each other are
//
//   Y = B^-1 A Yc      A = I + H, B = I - H, or the other way round
//
// With G = Yc + Yc^H and K = Yc - Yc^H a half generates power exactly when
//
//   W = B (Y + Y^H) B^H = G - H G H^H +- (H K + (H K)^H)
//
// has no Cholesky factor, which is a test without an inverse. Where pivot k fails, -d, the vector x
// with L^H x = e_k up to there has x^H W x = -d, so that the smallest eigenvalue of the Hermitian
// part of Y is below -d / (2 |B^H x|^2). Only where this is worst the eigenvalues are computed.
#include "passivity/quick_look.h"

#include "base/big_store.h"
#include "base/console.h"
#include "base/constants.h"
#include "fit/partial_fractions.h"
#include "kernels/lapack.h"
#include "kernels/matrix_kernels.h"
#include "store/fitmodel.h"
#include "store/solvedata.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace lcp {

namespace {

constexpr double BELOW = 100, ABOVE = 10; // two decades below the fit, one above it
constexpr int POINTS = 60;
constexpr int FEWPOINTS = 40; // of many conductors
constexpr int MANY = 24;
constexpr double ROUNDING = 1e-12; // of Yc, in W
constexpr std::size_t TRIALS = 4;  // worst points whose eigenvalues are computed

struct LookStore {
  LineMatrix H, Yc, G, K, HT, GH, HGH, HK, W, L, over, under, ratio, Y;
  Table<PoleTable, NGMAX> factors;
  PoleTable ofYc;
};
LookStore& LOOK = bigStore<LookStore>();

struct Candidate {
  double bound = 0; // the eigenvalue lies below it, S
  double f = 0;
  double sign = 1; // of H in A
};

// The worst first.
using Candidates = std::array<Candidate, TRIALS>;

void formModel(double f) {
  const FitModel& M = FITMODEL;
  const Complex s(0, TWOPI * f);
  for (int m = 1; m <= M.NPY; ++m) LOOK.ofYc[m] = poleTerm(s, M.YPOLE[m]);
  for (int g = 1; g <= M.NGROUP; ++g) {
    const Complex delay = std::exp(-s * M.TAU[g]);
    for (int m = 1; m <= M.NH[g]; ++m) LOOK.factors[g][m] = delay * poleTerm(s, M.HPOLE[g][m]);
  }
  for (int c = 1; c <= M.NC; ++c) {
    for (int r = 1; r <= M.NC; ++r) {
      Complex y = M.YD(r, c), h = 0;
      const Complex* R = M.YRES(r, c).data();
      for (int m = 0; m < M.NPY; ++m) y += R[m] * LOOK.ofYc.data()[m];
      for (int g = 1; g <= M.NGROUP; ++g) {
        R = M.HRES[g](r, c).data();
        for (int m = 0; m < M.NH[g]; ++m) h += R[m] * LOOK.factors[g].data()[m];
      }
      LOOK.Yc(r, c) = y;
      LOOK.H(r, c) = h;
    }
  }
}

// The parts of W. Returns the largest magnitude in Yc.
double formProducts(int n) {
  double largest = 0;
  for (int c = 1; c <= n; ++c) {
    for (int r = 1; r <= n; ++r) {
      LOOK.G(r, c) = LOOK.Yc(r, c) + std::conj(LOOK.Yc(c, r));
      LOOK.K(r, c) = LOOK.Yc(r, c) - std::conj(LOOK.Yc(c, r));
      LOOK.HT(r, c) = std::conj(LOOK.H(c, r));
      largest = std::max(largest, std::abs(LOOK.Yc(r, c)));
    }
  }
  CMATMUL(LOOK.GH, LOOK.G, LOOK.HT, n);
  CMATMUL(LOOK.HGH, LOOK.H, LOOK.GH, n);
  CMATMUL(LOOK.HK, LOOK.H, LOOK.K, n);
  return largest;
}

// The lower triangle of W.
void formPower(double sign, int n) {
  for (int c = 1; c <= n; ++c) {
    for (int r = c; r <= n; ++r) {
      const Complex odd = LOOK.HK(r, c) + std::conj(LOOK.HK(c, r));
      LOOK.W(r, c) = LOOK.G(r, c) - LOOK.HGH(r, c) + sign * odd;
    }
  }
}

// Cholesky factor of W + shift I as far as it goes. Returns the pivot that fails, 0 without one,
// and its value.
int failingPivot(double shift, int n, double& pivot) {
  const CView L = LOOK.L;
  for (int j = 1; j <= n; ++j) {
    std::copy_n(LOOK.W.view().column(j) + j - 1, n - j + 1, L.column(j) + j - 1);
    for (int k = 1; k < j; ++k) {
      const Complex l = std::conj(L(j, k));
      const Complex* from = L.column(k);
      Complex* to = L.column(j);
      for (int r = j - 1; r < n; ++r) to[r] -= from[r] * l;
    }
    pivot = L(j, j).real() + shift;
    if (!(pivot > 0)) return j;
    const double root = std::sqrt(pivot);
    for (int r = j; r <= n; ++r) L(r, j) /= root;
    L(j, j) = root;
  }
  return 0;
}

// |B^H x|^2 of the vector of failing pivot k.
double squareOfWave(int k, double sign, int n) {
  static ModeComplex x;
  const CView L = LOOK.L;
  x[k] = 1;
  for (int i = k - 1; i >= 1; --i) {
    Complex sum = std::conj(L(k, i));
    for (int r = i + 1; r < k; ++r) sum += std::conj(L(r, i)) * x[r];
    x[i] = -sum / L(i, i).real();
  }
  double square = 0;
  for (int c = 1; c <= n; ++c) {
    Complex b = c <= k ? x[c] : 0;
    for (int r = 1; r <= k; ++r) b -= sign * std::conj(LOOK.H(r, c)) * x[r];
    square += std::norm(b);
  }
  return square;
}

void keepWorst(Candidates& worst, const Candidate& found) {
  if (!(found.bound < worst.back().bound)) return;
  worst.back() = found;
  std::sort(worst.begin(), worst.end(),
            [](const auto& a, const auto& b) { return a.bound < b.bound; });
}

void lookAt(double f, Candidates& worst) {
  const int n = FITMODEL.NC;
  formModel(f);
  const double shift = ROUNDING * formProducts(n);
  for (const double sign : {1.0, -1.0}) {
    double pivot = 0;
    formPower(sign, n);
    const int k = failingPivot(shift, n, pivot);
    if (k > 0) keepWorst(worst, {0.5 * pivot / squareOfWave(k, sign, n), f, sign});
  }
}

// The smallest eigenvalue of the Hermitian part of Y; 0 where Y does not exist.
double smallestEigenvalue(double f, double sign) {
  static ModeInts pivots;
  static ModeReals values;
  const int n = FITMODEL.NC;
  formModel(f);
  for (int c = 1; c <= n; ++c) {
    for (int r = 1; r <= n; ++r) {
      LOOK.over(r, c) = (r == c ? 1.0 : 0.0) + sign * LOOK.H(r, c);
      LOOK.under(r, c) = (r == c ? 1.0 : 0.0) - sign * LOOK.H(r, c);
    }
  }
  if (!ZGETRF(LOOK.under, n, pivots) || !ZGETRI(LOOK.under, n, pivots)) return 0;
  CMATMUL(LOOK.ratio, LOOK.under, LOOK.over, n);
  CMATMUL(LOOK.Y, LOOK.ratio, LOOK.Yc, n);
  for (int c = 1; c <= n; ++c) {
    for (int r = 1; r <= c; ++r) LOOK.W(r, c) = 0.5 * (LOOK.Y(r, c) + std::conj(LOOK.Y(c, r)));
  }
  ZHEEV(LOOK.W, values.data(), n);
  return std::isfinite(values[1]) ? values[1] : 0;
}

} // namespace

PowerFound lookForPower() {
  const FrequencyGrid& G = SOLVEDATA.grid;
  const auto [first, last] = std::minmax({G.WFREQ[1] / TWOPI, G.WFREQ[G.NFUSE] / TWOPI});
  const int points = FITMODEL.NC > MANY ? FEWPOINTS : POINTS;
  const double low = first / BELOW, ratio = last * ABOVE / low;
  Candidates worst{};
  lookAt(0, worst);
  for (int k = 0; k < points; ++k)
    lookAt(low * std::pow(ratio, static_cast<double>(k) / (points - 1)), worst);
  PowerFound found{0, 0};
  for (const Candidate& C : worst) {
    if (!(C.bound < 0)) break;
    const double value = smallestEigenvalue(C.f, C.sign);
    if (value < found.value) found = {value, C.f};
  }
  return found;
}

void warnOfPower(std::string_view remedy) {
  const PowerFound found = lookForPower();
  if (!(found.value < 0)) return;
  console::warning(fmt::format("the model generates power, {:.3g} S at {:.4g} Hz, and its currents "
                               "can grow in a simulation: {}",
                               found.value, found.f, remedy));
}

} // namespace lcp

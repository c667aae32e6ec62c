// Where the waves are so weak that no phase of them can make the power of an end negative the
// points of the grid may stand further apart than the resonances; elsewhere they follow them.
#include "improved/passivity/spectrum_scan.h"

#include "base/constants.h"
#include "kernels/lapack.h"
#include "kernels/matrix_kernels.h"
#include "passivity/nodal_admittance.h"
#include "store/rundata.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace lcp {

namespace {

constexpr double BEYOND = 100;       // two decades
constexpr int PERDENSEDECADE = 1000; // points that follow the periods in a decade, at most
constexpr double NARROW = 1e-9;      // ratio of two frequencies, less 1, that counts as decided
constexpr double WORK = 4e9;         // points times the cube of the order that a scan may cost
constexpr double LEASTPOINTS = 20000;
constexpr double APART = 1.25; // ratio of points in a negative stretch that count as found

// How closely a scan looks.
struct Density {
  int perDecade;
  int perPeriod;   // in the time that a wave takes for both ways
  double boundary; // width of the step into a negative stretch, of its frequency
  bool certain;    // whether stretches are halved until they are decided
};

constexpr Density densityOf(Scan how) {
  return how == Scan::Full ? Density{20, 12, 1e-3, true} : Density{20, 8, 0.05, false};
}

double longestDelay() {
  double tau = 0;
  for (int m = 1; m <= ENFORCE.TOTORD; ++m) tau = std::max(tau, ENFORCE.FTAU[m]);
  return tau;
}

// The next frequency of the grid.
double nextFrequency(double f, double tau, bool settled, const Density& D) {
  const double far = f * std::pow(10.0, 1.0 / D.perDecade);
  if (settled || tau == 0) return far;
  const double step = 1 / (2 * tau * D.perPeriod);
  return std::min(far, std::max(f + step, f * std::pow(10.0, 1.0 / PERDENSEDECADE)));
}

struct Scanner {
  PackedModel model;
  Density density;
  SpectrumRange range;
  std::size_t left; // points that may still be taken
  Spectrum found;
};

// The smallest eigenvalue of a test matrix.
double smallestOf(const PlanarMatrix& W) {
  static LineMatrix A;
  static ModeReals values;
  W.copyTo(A);
  ZHEEV(A, values.data(), W.order());
  return values[1];
}

void note(Scanner& S, const WavePower& P) {
  S.found.points.push_back({P.f, {!P.positive[AGAINST], !P.positive[ALIKE]}});
  for (const Half half : {AGAINST, ALIKE}) {
    if (!P.positive[half]) S.found.negative.push_back({P.f, half, smallestOf(P.W[half]) / P.size});
  }
}

// Whether nothing that matters is left to find between a and b.
bool isDecided(const Scanner& S, const WavePower& a, const WavePower& middle, const WavePower& b,
               Half half) {
  const int positive = a.positive[half] + middle.positive[half] + b.positive[half];
  if (positive == 3) return !S.density.certain || isPositiveBetween(a, middle, b, half);
  return positive == 0 || b.f - a.f < S.density.boundary * b.f;
}

bool isPositive(const WavePower& P) { return P.positive[AGAINST] && P.positive[ALIKE]; }

// Whether a stretch needs a look at its middle.
bool isOpen(const Scanner& S, const WavePower& a, const WavePower& b) {
  if (a.settled && b.settled) return false;
  if (!S.density.certain && isPositive(a) && isPositive(b)) return false;
  return b.f - a.f > NARROW * b.f && a.f + b.f > NARROW * S.range.low;
}

// Notes what lies between a and b, and b; a has been noted.
void halve(Scanner& S, const WavePower& from, const WavePower& to) {
  std::vector<WavePower> ahead = {to};
  WavePower a = from;
  while (!ahead.empty()) {
    const WavePower& b = ahead.back();
    const bool open = isOpen(S, a, b);
    if (open && S.left == 0) S.found.resolved = false;
    if (open && S.left > 0) {
      --S.left;
      WavePower middle = wavePowerAt(S.model, a.f == 0 ? 0.5 * b.f : std::sqrt(a.f * b.f));
      if (!isDecided(S, a, middle, b, AGAINST) || !isDecided(S, a, middle, b, ALIKE)) {
        ahead.push_back(std::move(middle));
        continue;
      }
      note(S, middle);
    }
    note(S, b);
    a = std::move(ahead.back());
    ahead.pop_back();
  }
}

std::size_t mostPoints() {
  const double n = ENFORCE.NC;
  return static_cast<std::size_t>(std::max(LEASTPOINTS, WORK / (n * n * n + 1000)));
}

// Adds -1 times the identity and so on: I + sign H.
void formSum(CView A, CConstView H, double sign, int n) {
  for (int c = 1; c <= n; ++c) {
    for (int r = 1; r <= n; ++r) A(r, c) = (r == c ? 1.0 : 0.0) + sign * H(r, c);
  }
}

// Smallest eigenvalue of the Hermitian part of (I - sign H)^-1 (I + sign H) Yc.
double smallestOfHalf(CConstView H, CConstView Yc, double sign, int n) {
  static LineMatrix over, under, ratio, Y, G;
  static ModeInts pivots;
  static ModeReals W;
  formSum(over, H, sign, n);
  formSum(under, H, -sign, n);
  const bool regular = ZGETRF(under, n, pivots) && ZGETRI(under, n, pivots);
  CMATMUL(ratio, under, over, n);
  CMATMUL(Y, ratio, Yc, n);
  for (int c = 1; c <= n; ++c) {
    for (int r = 1; r <= c; ++r) G(r, c) = 0.5 * (Y(r, c) + std::conj(Y(c, r)));
  }
  ZHEEV(G, W.data(), n);
  return regular && std::isfinite(W[1]) ? W[1] : -std::numeric_limits<double>::infinity();
}

} // namespace

SpectrumRange spectrumRange() {
  const FitOptions& F = RUNDATA.fit;
  const PassivityOptions& P = RUNDATA.passivity;
  SpectrumRange range{std::min(F.FSTART, F.FEND) / BEYOND, std::max(F.FSTART, F.FEND) * BEYOND};
  if (P.PFLO > 0) range.low = std::min(range.low, P.PFLO);
  range.high = std::max(range.high, P.PFHI);
  return range;
}

double smallestEigenvalueAt(double f) {
  static LineMatrix H, Yc;
  const Complex s(0, TWOPI * f);
  propagationAt(ENFORCE.FRES, s, H);
  characteristicAt(s, false, Yc);
  return std::min(smallestOfHalf(H, Yc, 1, ENFORCE.NC), smallestOfHalf(H, Yc, -1, ENFORCE.NC));
}

Spectrum scanSpectrum(SpectrumRange range, Scan how) {
  Scanner S{packModel(), densityOf(how), range, mostPoints(), {}};
  const double tau = longestDelay();
  WavePower last = wavePowerAt(S.model, 0);
  note(S, last);
  double f = range.low;
  while (last.f < range.high) {
    WavePower next = wavePowerAt(S.model, std::min(f, range.high));
    halve(S, last, next);
    last = std::move(next);
    f = nextFrequency(last.f, tau, last.settled, S.density);
  }
  std::stable_sort(S.found.negative.begin(), S.found.negative.end(),
                   [](const auto& a, const auto& b) { return a.half < b.half; });
  return S.found;
}

namespace {

bool isMinimum(const std::vector<NegativePoint>& all, std::size_t k) {
  const NegativePoint& p = all[k];
  const bool falls = k == 0 || all[k - 1].half != p.half || all[k - 1].depth >= p.depth;
  return falls && (k + 1 == all.size() || all[k + 1].half != p.half || all[k + 1].depth > p.depth);
}

} // namespace

std::vector<NegativePoint> negativeMinima(const Spectrum& spectrum) {
  std::vector<NegativePoint> found;
  double last = 0;
  for (std::size_t k = 0; k < spectrum.negative.size(); ++k) {
    const NegativePoint& p = spectrum.negative[k];
    if (k > 0 && p.half != spectrum.negative[k - 1].half) last = 0;
    if (p.f < APART * last && !isMinimum(spectrum.negative, k)) continue;
    last = p.f;
    found.push_back(p);
  }
  return found;
}

std::vector<NegativeBand> negativeBands(const Spectrum& spectrum) {
  std::vector<NegativeBand> bands;
  bool open = false;
  for (const SpectrumPoint& p : spectrum.points) {
    const bool negative = p.negative[AGAINST] || p.negative[ALIKE];
    if (negative && !open) bands.push_back({p.f, p.f, 0});
    open = negative;
    if (!negative) continue;
    bands.back().to = p.f;
    bands.back().worst = std::min(bands.back().worst, smallestEigenvalueAt(p.f));
  }
  return bands;
}

} // namespace lcp

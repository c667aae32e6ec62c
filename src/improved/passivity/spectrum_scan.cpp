// Far from resonances the own admittance of an end is Yc. With the norm h of H, the halves
//
//   E = Yc + 2 (I - H)^-1 H Yc     O = Yc - 2 (I + H)^-1 H Yc
//
// have no eigenvalue further from those of Yc than 2 h / (1 - h) |Yc|. Where that is less than the
// smallest eigenvalue of Yc, nothing between two points can be negative, whatever the phase of the
// waves; only there may the grid points be further apart than the resonances.
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
constexpr int PERDECADE = 40;        // grid points per decade
constexpr int PERPERIOD = 16;        // ... per round trip of a wave
constexpr double MOSTLINEAR = 6000;  // ... that follow the periods individually
constexpr int PERDENSEDECADE = 1000; // ... per decade beyond them
constexpr double ROUNDING = 1e-13;   // relative to the largest eigenvalue
constexpr double CAUTION = 4; // factor on the bend in the middle of an interval: what it may hide
constexpr double STRAIGHT = 0.02; // bend over the values at which a negative interval is resolved
constexpr double NARROW = 1e-9;   // smallest relative step between two frequencies
constexpr double WORK = 1e8;      // limit of points times the cube of the order
constexpr double LEASTPOINTS = 10000;
constexpr double ROUGH = 0.1;     // points of a rough scan relative to a full one
constexpr double APART = 1.25;    // frequency ratio of reported points within a negative interval
constexpr double HALFSHARE = 0.5; // part of the smallest eigenvalue of Yc that the waves may reach

double frobenius(CConstView A, int n) {
  double sum = 0;
  for (int c = 1; c <= n; ++c) {
    for (int r = 1; r <= n; ++r) sum += std::norm(A(r, c));
  }
  return std::sqrt(sum);
}

// Eigenvalues of the Hermitian part of A, ascending.
void hermitianSpectrum(CConstView A, double* W, int n) {
  static LineMatrix G;
  for (int c = 1; c <= n; ++c) {
    for (int r = 1; r <= c; ++r) G(r, c) = 0.5 * (A(r, c) + std::conj(A(c, r)));
  }
  ZHEEV(G, W, n);
}

// Adds the eigenvalues of the half (I - sign H)^-1 (I + sign H) Yc to the point.
void addHalf(SpectrumPoint& p, Half half, CConstView H, CConstView Yc, double sign) {
  static LineMatrix over, under, ratio, Y;
  static ModeInts pivots;
  static ModeReals W;
  const int n = ENFORCE.NC;
  for (int c = 1; c <= n; ++c) {
    for (int r = 1; r <= n; ++r) {
      over(r, c) = (r == c ? 1.0 : 0.0) + sign * H(r, c);
      under(r, c) = (r == c ? 1.0 : 0.0) - sign * H(r, c);
    }
  }
  const bool regular = ZGETRF(under, n, pivots) && ZGETRI(under, n, pivots);
  CMATMUL(ratio, under, over, n);
  CMATMUL(Y, ratio, Yc, n);
  hermitianSpectrum(Y, W.data(), n);
  p.smallest[half] =
      regular && std::isfinite(W[1]) ? W[1] : -std::numeric_limits<double>::infinity();
  p.size = std::max({p.size, std::fabs(W[1]), std::fabs(W[n])});
}

// Whether no phase of the waves can make an eigenvalue negative.
bool isSettledByYc(CConstView H, CConstView Yc) {
  static ModeReals W;
  const int n = ENFORCE.NC;
  const double h = frobenius(H, n);
  if (!(h < 1)) return false;
  hermitianSpectrum(Yc, W.data(), n);
  return 2 * h / (1 - h) * frobenius(Yc, n) < HALFSHARE * W[1];
}

struct Sampled {
  SpectrumPoint point;
  bool settled;
};

Sampled sample(const ResidueList& RES, double f) {
  static LineMatrix H, Yc;
  const Complex s(0, TWOPI * f);
  propagationAt(RES, s, H);
  characteristicAt(s, false, Yc);
  Sampled S{{f, {0, 0}, 0}, false};
  addHalf(S.point, AGAINST, H, Yc, 1);
  addHalf(S.point, ALIKE, H, Yc, -1);
  S.settled = isSettledByYc(H, Yc);
  return S;
}

double longestDelay() {
  double tau = 0;
  for (int m = 1; m <= ENFORCE.TOTORD; ++m) tau = std::max(tau, ENFORCE.FTAU[m]);
  return tau;
}

// The next frequency of the grid.
double nextFrequency(double f, double tau, bool settled) {
  const double far = f * std::pow(10.0, 1.0 / PERDECADE);
  if (settled || tau == 0) return far;
  const double period = 1 / (2 * tau);
  const double near = f + period / PERPERIOD;
  if (f < MOSTLINEAR * period / PERPERIOD) return std::min(far, near);
  return std::min(far, std::max(near, f * std::pow(10.0, 1.0 / PERDENSEDECADE)));
}

std::vector<Sampled> layGrid(const ResidueList& RES, SpectrumRange range) {
  std::vector<Sampled> grid = {sample(RES, 0), sample(RES, range.low)};
  const double tau = longestDelay();
  while (grid.back().point.f < range.high) {
    const double f = nextFrequency(grid.back().point.f, tau, grid.back().settled);
    grid.push_back(sample(RES, std::min(f, range.high)));
  }
  return grid;
}

// Whether a half bends so much between a and b that a negative eigenvalue could be hidden, or that
// a negative minimum is not resolved.
bool isUnresolved(const SpectrumPoint& a, const SpectrumPoint& middle, const SpectrumPoint& b,
                  Half half) {
  const double x = a.smallest[half], y = middle.smallest[half], z = b.smallest[half];
  const double bend = std::fabs(y - 0.5 * (x + z));
  const double least = std::min({x, y, z});
  if (least >= 0) return least - CAUTION * bend < 0;
  return bend > STRAIGHT * std::max({std::fabs(x), std::fabs(y), std::fabs(z)}) &&
         bend > ROUNDING * middle.size;
}

bool isUnresolved(const SpectrumPoint& a, const SpectrumPoint& middle, const SpectrumPoint& b) {
  return isUnresolved(a, middle, b, AGAINST) || isUnresolved(a, middle, b, ALIKE);
}

std::size_t mostPoints(Scan how) {
  const double n = ENFORCE.NC;
  const double full = std::max(LEASTPOINTS, WORK / (n * n * n + 100));
  return static_cast<std::size_t>(how == Scan::Full ? full : full * ROUGH);
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

SpectrumPoint spectrumAt(const ResidueList& RES, double f) { return sample(RES, f).point; }

Spectrum scanSpectrum(const ResidueList& RES, SpectrumRange range, Scan how) {
  const std::size_t most = mostPoints(how);
  Spectrum scan;
  std::vector<Sampled> ahead = layGrid(RES, range);
  std::reverse(ahead.begin(), ahead.end());
  std::size_t taken = ahead.size();
  Sampled left = ahead.back();
  ahead.pop_back();
  scan.points.push_back(left.point);
  while (!ahead.empty()) {
    const Sampled right = ahead.back();
    const double a = left.point.f, b = right.point.f;
    const bool wide = b - a > NARROW * b && a + b > NARROW * range.low;
    if (wide && taken >= most) scan.resolved = false;
    if (wide && !(left.settled && right.settled) && taken < most) {
      const Sampled middle = sample(RES, a == 0 ? 0.5 * b : std::sqrt(a * b));
      ++taken;
      if (isUnresolved(left.point, middle.point, right.point)) {
        ahead.push_back(middle);
        continue;
      }
      scan.points.push_back(middle.point);
    }
    scan.points.push_back(right.point);
    left = right;
    ahead.pop_back();
  }
  return scan;
}

bool isNegative(const SpectrumPoint& p, Half half) {
  return !(p.smallest[half] >= -ROUNDING * p.size);
}

namespace {

bool isMinimum(const std::vector<SpectrumPoint>& points, std::size_t k, Half half) {
  const double value = points[k].smallest[half];
  const bool falls = k == 0 || points[k - 1].smallest[half] >= value;
  return falls && (k + 1 == points.size() || points[k + 1].smallest[half] > value);
}

} // namespace

std::vector<NegativePoint> negativePoints(const Spectrum& spectrum) {
  std::vector<NegativePoint> found;
  const auto& points = spectrum.points;
  for (const Half half : {AGAINST, ALIKE}) {
    double last = 0;
    for (std::size_t k = 0; k < points.size(); ++k) {
      const SpectrumPoint& p = points[k];
      if (!isNegative(p, half) || (p.f < APART * last && !isMinimum(points, k, half))) continue;
      last = p.f;
      found.push_back({p.f, half, p.smallest[half], p.size});
    }
  }
  return found;
}

std::vector<NegativeBand> negativeBands(const Spectrum& spectrum) {
  std::vector<NegativeBand> bands;
  bool open = false;
  for (const SpectrumPoint& p : spectrum.points) {
    const bool negative = isNegative(p, AGAINST) || isNegative(p, ALIKE);
    const double least = std::min(p.smallest[AGAINST], p.smallest[ALIKE]);
    if (negative && !open) bands.push_back({p.f, p.f, least});
    open = negative;
    if (!negative) continue;
    bands.back().to = p.f;
    bands.back().worst = std::min(bands.back().worst, least);
  }
  return bands;
}

} // namespace lcp

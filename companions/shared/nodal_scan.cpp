// The two ends are alike, so the nodal admittance splits into one half for ends driven in phase and
// one for ends driven in opposition,
//
//   Ya = (I + H)^-1 (I - H) Yc      Yb = (I - H)^-1 (I + H) Yc
//
// two matrices of order n instead of one of order 2 n. The smallest eigenvalue of their Hermitian
// parts is that of the whole matrix.
#include "companions/shared/nodal_scan.h"

#include "base/constants.h"
#include "companions/shared/direct_line.h"
#include "companions/shared/fit_ranges.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace lcp::companions {

namespace {

constexpr double BEYOND = 100; // two decades
constexpr double WORK = 4e7;   // limit of points times the cube of the order
constexpr double LEASTPOINTS = 5000;

ScanPoint nodalExtremes(const ModelFile& file, double f) {
  const Complex s(0, TWOPI * f);
  const NodalHalves Y = nodalHalves(file.Yc.at(s), file.H.at(s));
  return extremes(f, {Y.alike, Y.against});
}

ScanOptions optionsFor(double from, double to, std::size_t n) {
  ScanOptions o{from, to};
  const double cube = static_cast<double>(n * n * n);
  o.mostPoints = static_cast<std::size_t>(std::max(LEASTPOINTS, WORK / (cube + 100)));
  return o;
}

} // namespace

NodalHalves nodalHalves(const Matrix& Yc, const Matrix& H) {
  const Matrix I = identity(H.rows), plus = combined(I, 1, H), minus = combined(I, -1, H);
  return {product(inverse(plus), product(minus, Yc)), product(inverse(minus), product(plus, Yc))};
}

ScanPoint extremes(double f, const std::vector<Matrix>& matrices) {
  ScanPoint p{f, std::numeric_limits<double>::infinity(), 0};
  for (const Matrix& A : matrices) {
    const std::vector<double> values = hermitianEigenvalues(A);
    if (!(values.front() >= p.value)) p.value = values.front();
    p.size = std::max({p.size, std::fabs(values.front()), std::fabs(values.back())});
  }
  return p;
}

Scan nodalScan(const ModelFile& file) {
  const std::vector<double> f = fitRanges()[0].f;
  return adaptiveScan(optionsFor(f.front() / BEYOND, f.back() * BEYOND, file.n),
                      [&](double at) { return nodalExtremes(file, at); });
}

double negativeBelow(const ScanPoint& p) { return -1e-12 * p.size; }

} // namespace lcp::companions

// The two ends are alike, so the nodal admittance splits into the halves for ends driven alike and
// against each other,
//
//   Ya = (I + H)^-1 (I - H) Yc      Yb = (I - H)^-1 (I + H) Yc
//
// two matrices of order n instead of one of 2 n. The smallest eigenvalue of their Hermitian parts
// is that of the whole.
#include "companions/verify/passivity.h"

#include "companions/shared/adaptive_scan.h"
#include "companions/shared/direct_line.h"
#include "companions/verify/compare_functions.h"
#include "store/rundata.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace lcp::companions {

namespace {

constexpr double TWOPI = 6.283185307179586;
constexpr double NOISE = 1e-12; // of the size: what rounding leaves
constexpr double BEYOND = 100;  // two decades
constexpr std::size_t SHOWNBANDS = 10;
constexpr double WORK = 4e7; // points times the cube of the order that a scan may cost
constexpr double LEASTPOINTS = 5000;

// By how much of the largest eigenvalue the smallest is negative; 0 where there is nothing at all.
double negativeShare(const ScanPoint& p) { return p.size == 0 ? 0 : -p.value / p.size; }

// Smallest eigenvalue, and by magnitude the largest, of the Hermitian parts of some matrices.
ScanPoint extremes(double f, const std::vector<Matrix>& matrices) {
  ScanPoint p{f, std::numeric_limits<double>::infinity(), 0};
  for (const Matrix& A : matrices) {
    const std::vector<double> values = hermitianEigenvalues(A);
    if (!(values.front() >= p.value)) p.value = values.front();
    p.size = std::max({p.size, std::fabs(values.front()), std::fabs(values.back())});
  }
  return p;
}

ScanPoint nodalExtremes(const ModelFile& file, double f) {
  const Complex s(0, TWOPI * f);
  const Matrix I = identity(file.n), H = file.H.at(s), Yc = file.Yc.at(s);
  const Matrix alike = combined(I, 1, H), against = combined(I, -1, H);
  return extremes(f, {product(inverse(alike), product(against, Yc)),
                      product(inverse(against), product(alike, Yc))});
}

std::string bandWords(const Band& b) {
  return fmt::format("negative from {:.4g} Hz to {:.4g} Hz, {:.3g} S", b.from, b.to, b.worst);
}

void addBands(std::vector<Finding>& found, const std::vector<Band>& bands, const Limits& limits,
              const Scan& scan) {
  for (std::size_t i = 0; i < std::min(bands.size(), SHOWNBANDS); ++i) {
    const Band& b = bands[i];
    const auto at = std::find_if(scan.points.begin(), scan.points.end(),
                                 [&](const ScanPoint& p) { return p.f == b.at; });
    Finding f{"passivity", fmt::format("band {} of {}", i + 1, bands.size())};
    f.value = b.worst;
    f.unit = "S";
    f.frequency = b.at;
    f.words = bandWords(b);
    f.verdict = limits.judge("passive", negativeShare(*at));
    found.push_back(f);
  }
}

Finding worstOf(const Scan& scan, std::string_view subject, std::string_view where,
                std::string_view unit, const Limits& limits) {
  // Negative values by what they mean at their frequency, not by their size alone.
  const auto less = [](const ScanPoint& a, const ScanPoint& b) {
    if (a.value >= 0 || b.value >= 0) return a.value < b.value;
    return negativeShare(a) > negativeShare(b);
  };
  const ScanPoint& p = *std::min_element(scan.points.begin(), scan.points.end(), less);
  Finding f{std::string(subject), std::string(where)};
  f.value = p.value;
  f.unit = unit;
  f.frequency = p.f;
  f.verdict = limits.judge("passive", negativeShare(p));
  return f;
}

ScanOptions optionsFor(double from, double to, std::size_t n) {
  ScanOptions o{from, to};
  const double cube = static_cast<double>(n * n * n);
  o.mostPoints = static_cast<std::size_t>(std::max(LEASTPOINTS, WORK / (cube + 100)));
  return o;
}

} // namespace

std::vector<Finding> phasePassivity(const ModelFile& file, const Limits& limits) {
  const std::vector<FrequencyRange> ranges = fitRanges();
  const double low = ranges[0].f.front(), high = ranges[0].f.back();
  const Scan scan = adaptiveScan(optionsFor(low / BEYOND, high * BEYOND, file.n),
                                 [&](double f) { return nodalExtremes(file, f); });
  std::vector<Finding> found = {
      worstOf(scan, "passivity", "smallest eigenvalue, both ends", "S", limits)};
  const auto noise = [](const ScanPoint& p) { return -NOISE * p.size; };
  addBands(found, bandsBelow(scan, noise), limits, scan);
  if (scan.resolved) return found;
  Finding f{"passivity", "resolution"};
  f.words = fmt::format("{} points did not resolve every bend", scan.points.size());
  f.verdict = Verdict::DOUBTFUL;
  found.push_back(f);
  return found;
}

namespace {

// A conductance of nothing beside a capacitance is 0, whatever its rounding.
ScanPoint realExtremes(double f, const Matrix& A) {
  ScanPoint p = extremes(f, {A});
  if (p.value < 0 && -p.value <= NOISE * largest(A)) p.value = 0;
  return p;
}

} // namespace

std::vector<Finding> linePassivity(const Limits& limits) {
  std::vector<Finding> found;
  Scan ofZ, ofY;
  std::vector<double> all = {RUNDATA.line.SSFREQ, RUNDATA.bergeron.FLOSS};
  if (RUNDATA.model.fitted()) {
    all.clear();
    for (const FrequencyRange& range : fitRanges())
      all.insert(all.end(), range.f.begin(), range.f.end());
  }
  for (const double f : all) {
    const LinePoint point = constantsOf(f);
    ofZ.points.push_back(realExtremes(f, point.Z));
    ofY.points.push_back(realExtremes(f, point.Y));
  }
  found.push_back(worstOf(ofZ, "line", "smallest eigenvalue of Re Z", "ohm/m", limits));
  found.push_back(worstOf(ofY, "line", "smallest eigenvalue of Re Y", "S/m", limits));
  return found;
}

} // namespace lcp::companions

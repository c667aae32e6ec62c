#include "companions/verify/passivity.h"

#include "companions/shared/direct_line.h"
#include "companions/shared/fit_ranges.h"
#include "companions/shared/nodal_scan.h"
#include "store/rundata.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace lcp::companions {

namespace {

constexpr double NOISE = 1e-12; // relative to the size: left by rounding
constexpr std::size_t SHOWNBANDS = 10;

// The smallest eigenvalue, if negative, relative to the largest; 0 if both are zero.
double negativeShare(const ScanPoint& p) { return p.size == 0 ? 0 : -p.value / p.size; }

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
    f.verdict = limits.judge("passive", negativeShare(*at));
    f.words = bandWords(b);
    if (f.verdict == Verdict::GOOD)
      f.words += fmt::format(", only {:.2g} of the largest", negativeShare(*at));
    found.push_back(f);
  }
}

Finding findingAt(const ScanPoint& p, std::string_view subject, std::string_view where,
                  std::string_view unit, const Limits& limits) {
  Finding f{std::string(subject), std::string(where)};
  f.value = p.value;
  f.unit = unit;
  f.frequency = p.f;
  f.verdict = limits.judge("passive", negativeShare(p));
  return f;
}

const ScanPoint& smallestOf(const Scan& scan) {
  const auto less = [](const ScanPoint& a, const ScanPoint& b) { return a.value < b.value; };
  return *std::min_element(scan.points.begin(), scan.points.end(), less);
}

// Negative values ordered by their share at their frequency.
const ScanPoint& deepestOf(const Scan& scan) {
  const auto less = [](const ScanPoint& a, const ScanPoint& b) {
    if (a.value >= 0 || b.value >= 0) return a.value < b.value;
    return negativeShare(a) > negativeShare(b);
  };
  return *std::min_element(scan.points.begin(), scan.points.end(), less);
}

Finding worstOf(const Scan& scan, std::string_view subject, std::string_view where,
                std::string_view unit, const Limits& limits) {
  return findingAt(deepestOf(scan), subject, where, unit, limits);
}

// The smallest eigenvalue, and where it is another one, the most negative of its frequency's
// largest.
std::vector<Finding> smallestEigenvalues(const Scan& scan, const Limits& limits) {
  const ScanPoint &smallest = smallestOf(scan), &deepest = deepestOf(scan);
  std::vector<Finding> found = {
      findingAt(smallest, "passivity", "smallest eigenvalue, both ends", "S", limits)};
  if (smallest.value >= 0 || smallest.f == deepest.f) return found;
  Finding f = findingAt(deepest, "passivity", "most negative of its frequency", "S", limits);
  f.words =
      fmt::format("{:.4g} S, {:.3g} % of the largest", deepest.value, 100 * negativeShare(deepest));
  found.push_back(f);
  return found;
}

} // namespace

std::vector<Finding> phasePassivity(const ModelFile& file, const Limits& limits) {
  const Scan scan = nodalScan(file);
  std::vector<Finding> found = smallestEigenvalues(scan, limits);
  addBands(found, bandsBelow(scan, negativeBelow), limits, scan);
  if (scan.resolved) return found;
  Finding f{"passivity", "resolution"};
  f.words = fmt::format("{} points did not resolve every bend", scan.points.size());
  f.verdict = Verdict::DOUBTFUL;
  found.push_back(f);
  return found;
}

namespace {

// A conductance that is only rounding beside the capacitance counts as 0.
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

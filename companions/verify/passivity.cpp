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
    f.words = bandWords(b);
    f.verdict = limits.judge("passive", negativeShare(*at));
    found.push_back(f);
  }
}

Finding worstOf(const Scan& scan, std::string_view subject, std::string_view where,
                std::string_view unit, const Limits& limits) {
  // Negative values are ordered by their share at their frequency, not by absolute size.
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

} // namespace

std::vector<Finding> phasePassivity(const ModelFile& file, const Limits& limits) {
  const Scan scan = nodalScan(file);
  std::vector<Finding> found = {
      worstOf(scan, "passivity", "smallest eigenvalue, both ends", "S", limits)};
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

#include "companions/plot/fit_facts.h"

#include "base/constants.h"
#include "companions/shared/direct_line.h"
#include "companions/shared/fit_ranges.h"
#include "companions/shared/followed_modes.h"
#include "companions/shared/nodal_scan.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace lcp::companions {

namespace {

constexpr std::size_t BUCKETS = 700; // of a scan; the smallest and largest value of each are kept
constexpr std::size_t MOSTBANDS = 200;

Json rounded(double value) { return Json::parse(fmt::format("{:.7g}", value)); }

void addPoles(Json& all, const std::string& name, const Rational& F) {
  if (F.poles.empty()) return;
  Json re = Json::array(), im = Json::array(), residue = Json::array();
  for (std::size_t m = 0; m < F.poles.size(); ++m) {
    re.push_back(rounded(F.poles[m].real()));
    im.push_back(rounded(F.poles[m].imag()));
    residue.push_back(rounded(largest(F.residues[m])));
  }
  all.push_back({{"name", name}, {"re", re}, {"im", im}, {"residue", residue}});
}

// One row in ms; delay and travel times are in s.
Json delayRow(const std::string& name, double delay, const std::vector<double>& travel) {
  return {{"name", name},
          {"delay", rounded(delay / MILLI)},
          {"travel", rounded(nearestTo(delay, travel) / MILLI)}};
}

// Reduces a scan to what a screen can show: the smallest and largest value in each bucket.
std::vector<ScanPoint> thinned(const std::vector<ScanPoint>& points) {
  if (points.size() <= 2 * BUCKETS) return points;
  const double low = std::log(points.front().f), width = std::log(points.back().f) - low;
  const auto bucketOf = [&](const ScanPoint& p) {
    return static_cast<std::size_t>((std::log(p.f) - low) / width * BUCKETS);
  };
  const auto less = [](const ScanPoint& a, const ScanPoint& b) { return a.value < b.value; };
  std::vector<ScanPoint> kept;
  for (auto from = points.begin(); from != points.end();) {
    const auto to = std::find_if(
        from, points.end(), [&](const ScanPoint& p) { return bucketOf(p) != bucketOf(*from); });
    auto [first, second] = std::minmax_element(from, to, less);
    if (second < first) std::swap(first, second);
    kept.push_back(*first);
    if (second != first) kept.push_back(*second);
    from = to;
  }
  return kept;
}

Json curveOf(const ModelFile& file) {
  const Scan scan = nodalScan(file);
  std::vector<double> f, value;
  for (const ScanPoint& p : thinned(scan.points)) {
    f.push_back(p.f);
    value.push_back(p.value);
  }
  Json bands = Json::array();
  for (const Band& b : bandsBelow(scan, negativeBelow)) {
    if (bands.size() == MOSTBANDS) break;
    bands.push_back({rounded(b.from), rounded(b.to), rounded(b.worst), rounded(b.at)});
  }
  return {{"f", packedNumbers(f)}, {"value", packedNumbers(value)}, {"bands", bands}};
}

} // namespace

Json polesOf(const ModelFile& file) {
  Json all = Json::array();
  for (const auto& [name, F] : functionsOf(file)) addPoles(all, name, *F);
  return all;
}

Json delaysOf(const ModelFile& file, double length) {
  Json rows = Json::array();
  if (file.kind == ModelKind::Bergeron) {
    const BergeronFile& B = file.bergeron;
    const LineModes modes = modesLike(constantsOf(B.SSFREQ), B.TI);
    const std::vector<double> travel = travelTimes(modes, B.SSFREQ, length);
    for (std::size_t m = 0; m < file.n; ++m)
      rows.push_back(delayRow(fmt::format("mode {}", m + 1), B.modes[m].T * MILLI, {travel[m]}));
    return rows;
  }
  if (file.H.delays.empty() && file.modes.empty()) return rows;
  const double top = fitRanges()[0].f.back();
  const std::vector<double> travel = travelTimes(modesOf(constantsOf(top)), top, length);
  for (std::size_t g = 0; g < file.H.delays.size(); ++g)
    rows.push_back(delayRow(fmt::format("group {}", g + 1), file.H.delays[g], travel));
  for (std::size_t m = 0; m < file.modes.size(); ++m)
    rows.push_back(delayRow(fmt::format("mode {}", m + 1), file.modes[m].delay * MILLI, travel));
  return rows;
}

Json passivityOf(const ModelFile& file, const ModelFile& before) {
  if (file.kind != ModelKind::Phase) return nullptr;
  Json curves = {{"after", curveOf(file)}};
  if (before.kind == ModelKind::Phase) curves["before"] = curveOf(before);
  return curves;
}

} // namespace lcp::companions

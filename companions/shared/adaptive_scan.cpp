#include "companions/shared/adaptive_scan.h"

#include <algorithm>
#include <cmath>

namespace lcp::companions {

namespace {

constexpr double NARROW = 1e-9; // smallest relative step between two frequencies

double middleOf(double a, double b) { return std::sqrt(a * b); }

// Whether the middle point of an interval is off the straight line between its ends.
bool bends(const ScanPoint& a, const ScanPoint& middle, const ScanPoint& b, double tolerance) {
  const double line = 0.5 * (a.value + b.value);
  return std::fabs(middle.value - line) > tolerance * middle.size;
}

} // namespace

Scan adaptiveScan(const ScanOptions& o, const std::function<ScanPoint(double f)>& sample) {
  Scan scan;
  const double decades = std::log10(o.to / o.from);
  const int n = std::max(2, static_cast<int>(std::ceil(decades * o.perDecade)));
  std::vector<ScanPoint> ahead; // ends of intervals not processed yet, the nearest last
  for (int k = n; k >= 0; --k) ahead.push_back(sample(o.from * std::pow(10.0, decades * k / n)));
  std::size_t taken = ahead.size();
  scan.points.push_back(ahead.back());
  ahead.pop_back();
  while (!ahead.empty()) {
    const ScanPoint a = scan.points.back(), b = ahead.back();
    const bool room = taken < o.mostPoints;
    const bool wide = b.f / a.f - 1 > NARROW;
    if (!room) scan.resolved = false;
    const ScanPoint middle = room && wide ? sample(middleOf(a.f, b.f)) : b;
    taken += room && wide ? 1 : 0;
    if (room && wide && bends(a, middle, b, o.tolerance)) {
      ahead.push_back(middle);
      continue;
    }
    if (room && wide) scan.points.push_back(middle);
    scan.points.push_back(b);
    ahead.pop_back();
  }
  return scan;
}

std::vector<Band> bandsBelow(const Scan& scan,
                             const std::function<double(const ScanPoint&)>& limit) {
  std::vector<Band> bands;
  bool open = false;
  for (const ScanPoint& p : scan.points) {
    const bool below = p.value < limit(p);
    if (below && !open) bands.push_back({p.f, p.f, p.value, p.f});
    open = below;
    if (!below) continue;
    Band& band = bands.back();
    band.to = p.f;
    if (p.value < band.worst) {
      band.worst = p.value;
      band.at = p.f;
    }
  }
  return bands;
}

} // namespace lcp::companions

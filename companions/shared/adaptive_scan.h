// A function of frequency sampled where it bends.
#pragma once

#include <functional>
#include <vector>

namespace lcp::companions {

struct ScanPoint {
  double f; // Hz
  double value;
  double size; // what the value is measured by at this frequency
};

struct ScanOptions {
  double from, to;         // Hz, 0 < from < to
  int perDecade = 40;      // points of the first grid
  double tolerance = 1e-3; // of the size: how far a straight line between points may be off
  std::size_t mostPoints = 50000;
};

struct Scan {
  std::vector<ScanPoint> points; // rising
  bool resolved = true;          // false when the points ran out before every bend was resolved
};

// Samples on a logarithmic grid and bisects every stretch, in log f, whose middle is further from
// the straight line between its ends than the tolerance times the size there. Values that are no
// numbers end their stretch.
Scan adaptiveScan(const ScanOptions& options, const std::function<ScanPoint(double f)>& sample);

// A stretch of a scan whose values lie below a limit.
struct Band {
  double from, to; // Hz
  double worst;    // smallest value in it
  double at;       // its frequency, Hz
};

std::vector<Band> bandsBelow(const Scan& scan,
                             const std::function<double(const ScanPoint&)>& limit);

} // namespace lcp::companions

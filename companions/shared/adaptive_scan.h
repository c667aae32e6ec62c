// Samples a function of frequency adaptively, with more points where it bends.
#pragma once

#include <functional>
#include <vector>

namespace lcp::companions {

struct ScanPoint {
  double f; // Hz
  double value;
  double size; // scale of the value at this frequency
};

struct ScanOptions {
  double from, to;         // Hz, 0 < from < to
  int perDecade = 40;      // points of the initial grid
  double tolerance = 1e-3; // allowed deviation from straight lines, relative to the size
  std::size_t mostPoints = 50000;
};

struct Scan {
  std::vector<ScanPoint> points; // ascending in frequency
  bool resolved = true;          // false if the points ran out before every bend was resolved
};

// Samples on a logarithmic grid and bisects, in log f, every interval whose middle deviates from
// the straight line between its ends by more than the tolerance times the size there. Intervals
// with NaN are not refined.
Scan adaptiveScan(const ScanOptions& options, const std::function<ScanPoint(double f)>& sample);

// An interval of a scan in which the values are below a limit.
struct Band {
  double from, to; // Hz
  double worst;    // smallest value in it
  double at;       // its frequency, Hz
};

// All such intervals, ascending; from and to are the first and last point below the limit.
std::vector<Band> bandsBelow(const Scan& scan,
                             const std::function<double(const ScanPoint&)>& limit);

} // namespace lcp::companions

#include "companions/shared/fit_ranges.h"

#include "companions/shared/direct_line.h"
#include "store/rundata.h"
#include "store/yz_table.h"

#include <algorithm>
#include <cmath>

namespace lcp::companions {

namespace {

constexpr int BELOW = 5; // grid points below the band
constexpr int FINER = 10;
constexpr double ZERO = 1e-6; // Hz
constexpr int OUTSIDE = 30;   // points per decade outside the band

std::vector<double> tableFrequencies() {
  std::vector<double> f;
  for (int k = 1; k <= RUNDATA.fit.NFINC; ++k) f.push_back(YZTABLE.FTABLE[k]);
  return f;
}

std::vector<double> between(const std::vector<double>& points) {
  std::vector<double> f;
  for (std::size_t k = 0; k + 1 < points.size(); ++k) {
    for (int part = 1; part < FINER; ++part)
      f.push_back(points[k] * std::pow(points[k + 1] / points[k], double(part) / FINER));
  }
  return f;
}

bool conductsAtZero() {
  const Matrix Y = constantsOf(ZERO).Y;
  for (std::size_t i = 0; i < Y.rows; ++i) {
    if (std::fabs(Y(i, i).real()) < std::fabs(Y(i, i).imag())) return false;
  }
  return true;
}

} // namespace

std::vector<double> ratios(double a, double b, int steps) {
  std::vector<double> f;
  for (int k = 0; k <= steps; ++k) f.push_back(a * std::pow(b / a, static_cast<double>(k) / steps));
  return f;
}

std::vector<FrequencyRange> fitRanges() {
  const FitOptions& F = RUNDATA.fit;
  std::vector<FrequencyRange> ranges;
  if (RUNDATA.run.fromTable()) {
    ranges.push_back({"at the rows of the table", true, "", tableFrequencies()});
  } else {
    const double step = std::pow(F.FEND / F.FSTART, 1.0 / F.NFINC);
    ranges.push_back({"at the points of the fit", true, "",
                      ratios(F.FSTART * std::pow(step, -BELOW), F.FEND, F.NFINC + BELOW)});
  }
  std::sort(ranges[0].f.begin(), ranges[0].f.end()); // the grid of a fit can be descending
  ranges.push_back({"between them", true, "", between(ranges[0].f)});
  if (RUNDATA.run.fromTable()) return ranges;
  const double low = ranges[0].f.front(), high = std::max(F.FEND, ranges[0].f.back());
  ranges.push_back({"a decade below", false, "outside", ratios(low / 10, low, OUTSIDE)});
  ranges.push_back({"a decade above", false, "outside", ratios(high, 10 * high, OUTSIDE)});
  ranges.push_back({"at zero frequency", false, conductsAtZero() ? "zero" : "", {ZERO}});
  return ranges;
}

} // namespace lcp::companions

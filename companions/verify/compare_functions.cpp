#include "companions/verify/compare_functions.h"

#include "base/constants.h"
#include "companions/shared/direct_line.h"
#include "companions/shared/fit_ranges.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace lcp::companions {

namespace {

// Adds the deviations of all matrix elements at a frequency, as fractions of a reference.
void take(Deviation& d, const Matrix& model, const Matrix& line, double reference, double f) {
  for (std::size_t j = 0; j < line.columns; ++j) {
    for (std::size_t i = 0; i < line.rows; ++i)
      d.take(std::abs(model(i, j) - line(i, j)) / reference, f, i, j);
  }
}

Finding findingOf(const Deviation& d, std::string_view subject, const FrequencyRange& range,
                  std::string_view limit, const Limits& limits) {
  return d.finding(std::string(subject),
                   fmt::format("{} ({},{})", range.name, d.row + 1, d.column + 1),
                   limits.judge(range.limitOf(limit), 100 * d.worst));
}

} // namespace

std::vector<Finding> comparePhase(const ModelFile& file, double length, const Limits& limits) {
  std::vector<Finding> admittance, propagation;
  double largestYc = 0;
  for (const FrequencyRange& range : fitRanges()) {
    Deviation ofYc, ofH;
    std::vector<PhaseFunctions> line;
    for (const double f : range.f) {
      const LinePoint point = constantsOf(f);
      line.push_back(phaseFunctionsOf(point, modesOf(point), length));
      if (admittance.empty()) largestYc = std::max(largestYc, largest(line.back().Yc));
    }
    for (std::size_t k = 0; k < line.size(); ++k) {
      const Complex s(0, TWOPI * range.f[k]);
      const double reference = range.inside ? largestYc : largest(line[k].Yc);
      take(ofYc, file.Yc.at(s), line[k].Yc, reference, range.f[k]);
      take(ofH, file.H.at(s), line[k].H, 1.0, range.f[k]);
    }
    admittance.push_back(findingOf(ofYc, "Yc", range, "yc", limits));
    propagation.push_back(findingOf(ofH, "H", range, "h", limits));
  }
  admittance.insert(admittance.end(), propagation.begin(), propagation.end());
  return admittance;
}

std::vector<Finding> compareSeries(const ModelFile& file, const Limits& limits) {
  std::vector<Finding> found;
  double largestZ = 0;
  for (const FrequencyRange& range : fitRanges()) {
    Deviation d;
    std::vector<Matrix> line;
    for (const double f : range.f) {
      line.push_back(constantsOf(f).Z);
      if (found.empty()) largestZ = std::max(largestZ, largest(line.back()));
    }
    for (std::size_t k = 0; k < line.size(); ++k) {
      const double reference = range.inside ? largestZ : largest(line[k]);
      take(d, file.Z.at(Complex(0, TWOPI * range.f[k])), line[k], reference, range.f[k]);
    }
    found.push_back(findingOf(d, "Z", range, "z", limits));
  }
  return found;
}

} // namespace lcp::companions

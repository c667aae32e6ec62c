#include "companions/verify/compare_functions.h"

#include "companions/shared/direct_line.h"
#include "companions/shared/fit_ranges.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace lcp::companions {

namespace {

constexpr double TWOPI = 6.283185307179586;

// Worst deviation and root of the mean square over a range.
struct Deviation {
  double worst = 0, frequency = 0, squares = 0;
  std::size_t row = 0, column = 0, count = 0;

  // The elements of two matrices at a frequency, as fractions of a reference.
  void take(const Matrix& model, const Matrix& line, double reference, double f) {
    for (std::size_t j = 0; j < line.columns; ++j) {
      for (std::size_t i = 0; i < line.rows; ++i) {
        const double e = std::abs(model(i, j) - line(i, j)) / reference;
        squares += e * e;
        ++count;
        if (e <= worst || std::isnan(worst)) continue; // NaN stays
        worst = e;
        frequency = f;
        row = i;
        column = j;
      }
    }
  }
};

Finding findingOf(const Deviation& d, std::string_view subject, const FrequencyRange& range,
                  std::string_view limit, const Limits& limits) {
  Finding f{std::string(subject), fmt::format("{} ({},{})", range.name, d.row + 1, d.column + 1)};
  f.value = 100 * d.worst;
  f.unit = "%";
  f.rms = 100 * std::sqrt(d.squares / static_cast<double>(std::max<std::size_t>(d.count, 1)));
  f.frequency = d.frequency;
  f.verdict = limits.judge(range.limit.empty() ? limit : range.limit, f.value);
  return f;
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
      const double reference = range.limit.empty() ? largestYc : largest(line[k].Yc);
      ofYc.take(file.Yc.at(s), line[k].Yc, reference, range.f[k]);
      ofH.take(file.H.at(s), line[k].H, 1.0, range.f[k]);
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
      const double reference = range.limit.empty() ? largestZ : largest(line[k]);
      d.take(file.Z.at(Complex(0, TWOPI * range.f[k])), line[k], reference, range.f[k]);
    }
    found.push_back(findingOf(d, "Z", range, "z", limits));
  }
  return found;
}

} // namespace lcp::companions

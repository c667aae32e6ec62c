#include "companions/verify/compare_functions.h"

#include "base/constants.h"
#include "companions/shared/direct_line.h"
#include "companions/shared/fit_ranges.h"
#include "companions/shared/two_port.h"

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

namespace {

std::vector<Finding> compareFunctions(const ModelFile& file, double length,
                                      std::string_view ofYcLimit, std::string_view ofHLimit,
                                      const Limits& limits) {
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
      const PhaseFunctions model =
          modelFunctions(file, Complex(0, TWOPI * range.f[k]), length, Stepping{});
      const double reference = range.inside ? largestYc : largest(line[k].Yc);
      take(ofYc, model.Yc, line[k].Yc, reference, range.f[k]);
      take(ofH, model.H, line[k].H, 1.0, range.f[k]);
    }
    admittance.push_back(findingOf(ofYc, "Yc", range, ofYcLimit, limits));
    propagation.push_back(findingOf(ofH, "H", range, ofHLimit, limits));
  }
  admittance.insert(admittance.end(), propagation.begin(), propagation.end());
  return admittance;
}

// Elements against the largest of a frequency, which is what counts at that frequency.
Finding compareMatrix(std::string_view subject, const FrequencyRange& range,
                      const std::vector<Matrix>& model, const std::vector<Matrix>& line,
                      double reference, const Limits& limits) {
  Deviation d;
  for (std::size_t k = 0; k < line.size(); ++k) {
    const double size = range.inside && reference > 0 ? reference : largest(line[k]);
    take(d, model[k], line[k], size, range.f[k]);
  }
  return findingOf(d, subject, range, "z", limits);
}

} // namespace

std::vector<Finding> comparePhase(const ModelFile& file, double length, const Limits& limits) {
  return compareFunctions(file, length, "yc", "h", limits);
}

std::vector<Finding> compareModesInPhases(const ModelFile& file, double length,
                                          const Limits& limits) {
  std::vector<Finding> found = compareFunctions(file, length, "mode", "mode", limits);
  for (Finding& f : found) f.where = "in phases, " + f.where;
  return found;
}

std::vector<Finding> compareSeries(const ModelFile& file, const Limits& limits) {
  std::vector<Finding> ofZ, ofY;
  double largestZ = 0;
  for (const FrequencyRange& range : fitRanges()) {
    std::vector<Matrix> Z, Y, modelZ, modelY;
    for (const double f : range.f) {
      const LinePoint point = constantsOf(f);
      const Complex s(0, TWOPI * f);
      Z.push_back(point.Z);
      Y.push_back(point.Y);
      modelZ.push_back(file.Z.at(s));
      modelY.push_back(combined(file.G, s, file.C));
      if (ofZ.empty()) largestZ = std::max(largestZ, largest(point.Z));
    }
    ofZ.push_back(compareMatrix("Z", range, modelZ, Z, largestZ, limits));
    ofY.push_back(compareMatrix("Y", range, modelY, Y, 0, limits));
  }
  ofZ.insert(ofZ.end(), ofY.begin(), ofY.end());
  return ofZ;
}

} // namespace lcp::companions

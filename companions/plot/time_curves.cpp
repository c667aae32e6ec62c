#include "companions/plot/time_curves.h"

#include "base/constants.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <queue>

namespace lcp::companions {

namespace {

constexpr std::size_t SHOWN = 3;       // quantities of a case
constexpr std::size_t MOSTTIMES = 500; // of a case
constexpr double VISIBLE = 1.0 / 400;  // of the height of a chart
constexpr double NOTHING = 1e-6;       // deviation over the peak that is as good as none

double largestOf(const std::vector<double>& values) {
  double most = 0;
  for (const double v : values) most = std::max(most, std::fabs(v));
  return most;
}

std::vector<double> difference(const std::vector<double>& a, const std::vector<double>& b) {
  std::vector<double> d(std::min(a.size(), b.size()));
  for (std::size_t k = 0; k < d.size(); ++k) d[k] = a[k] - b[k];
  return d;
}

// The deviations of a quantity: of the model, and of its step.
double deviationOf(const CaseCurves& C, std::size_t q) {
  return std::max(largestOf(difference(C.functions.values[q], C.line.values[q])),
                  largestOf(difference(C.stepped.values[q], C.functions.values[q])));
}

std::vector<std::size_t> shownOf(const CaseCurves& C) {
  std::vector<std::size_t> order;
  for (std::size_t q = 0; q < C.line.values.size(); ++q) order.push_back(q);
  if (order.size() <= SHOWN) return order;
  std::vector<double> size;
  for (const std::size_t q : order) size.push_back(deviationOf(C, q));
  std::stable_sort(order.begin() + 1, order.end(),
                   [&](std::size_t a, std::size_t b) { return size[a] > size[b]; });
  order.resize(SHOWN);
  std::sort(order.begin(), order.end());
  return order;
}

double peakOf(const CaseCurves& C) {
  double peak = 0;
  for (const auto& values : C.line.values) peak = std::max(peak, largestOf(values));
  return peak;
}

// The quantities are those of the phases; of the case with a fault, of those without it.
std::string nameOf(const CaseCurves& C, std::size_t q) {
  return fmt::format("phase {}", q + (C.row.which == TransientCase::Ground ? 2 : 1));
}

std::string packedAt(const std::vector<double>& values, const std::vector<std::size_t>& kept) {
  std::vector<double> some;
  for (const std::size_t k : kept) some.push_back(values[std::min(k, values.size() - 1)]);
  return packedNumbers(some);
}

// An interval between two kept points with the point that is worst to leave out.
struct Gap {
  std::size_t from, to, worst;
  double off; // of the worst one, in heights of its curve
  bool operator<(const Gap& other) const { return off < other.off; }
};

Gap gapOf(const std::vector<std::vector<double>>& curves, const std::vector<double>& heights,
          std::size_t from, std::size_t to) {
  Gap gap{from, to, from, 0};
  for (std::size_t c = 0; c < curves.size(); ++c) {
    const std::vector<double>& v = curves[c];
    const double slope = (v[to] - v[from]) / static_cast<double>(to - from);
    for (std::size_t k = from + 1; k < to; ++k) {
      const double off =
          std::fabs(v[k] - v[from] - slope * static_cast<double>(k - from)) / heights[c];
      if (!(off > gap.off)) continue;
      gap.off = off;
      gap.worst = k;
    }
  }
  return gap;
}

Json caseOf(const CaseCurves& C) {
  const double peak = peakOf(C);
  const std::vector<std::size_t> shown = shownOf(C);
  std::vector<std::vector<double>> seen;
  for (const std::size_t q : shown) {
    const auto &line = C.line.values[q], &model = C.functions.values[q];
    const std::vector<double> own = difference(model, line);
    seen.insert(seen.end(), {line, model, difference(C.stepped.values[q], model)});
    if (largestOf(own) > NOTHING * peak) seen.push_back(own);
  }
  for (auto& curve : seen) curve.resize(C.line.values[shown[0]].size());
  const std::vector<std::size_t> kept = keptOf(seen, VISIBLE, MOSTTIMES);
  std::vector<double> t;
  for (const std::size_t k : kept) t.push_back(C.step * static_cast<double>(k) / MILLI);
  Json quantities = Json::array();
  for (const std::size_t q : shown)
    quantities.push_back({{"name", nameOf(C, q)},
                          {"line", packedAt(C.line.values[q], kept)},
                          {"model", packedAt(C.functions.values[q], kept)},
                          {"stepped", packedAt(C.stepped.values[q], kept)}});
  const bool current = C.row.which == TransientCase::Short || C.row.which == TransientCase::Dc;
  return {{"id", C.row.name},      {"title", C.row.what},     {"unit", current ? "A" : "V"},
          {"peak", peak},          {"step", 1e6 * C.step},    {"of", C.line.values.size()},
          {"t", packedNumbers(t)}, {"quantities", quantities}};
}

} // namespace

std::vector<std::size_t> keptOf(const std::vector<std::vector<double>>& curves, double share,
                                std::size_t most) {
  const std::size_t n = curves[0].size();
  std::vector<double> heights;
  for (const auto& v : curves) {
    const auto [low, high] = std::minmax_element(v.begin(), v.end());
    heights.push_back(*high > *low ? *high - *low : 1);
  }
  std::vector<std::size_t> kept = {0};
  if (n < 2) return kept;
  kept.push_back(n - 1);
  std::priority_queue<Gap> gaps;
  gaps.push(gapOf(curves, heights, 0, n - 1));
  while (kept.size() < most && gaps.top().off > share) {
    const Gap gap = gaps.top();
    gaps.pop();
    kept.push_back(gap.worst);
    gaps.push(gapOf(curves, heights, gap.from, gap.worst));
    gaps.push(gapOf(curves, heights, gap.worst, gap.to));
  }
  std::sort(kept.begin(), kept.end());
  return kept;
}

Json timeCurvesOf(const std::vector<CaseCurves>& cases) {
  Json all = Json::array();
  for (const CaseCurves& C : cases) all.push_back(caseOf(C));
  return all;
}

} // namespace lcp::companions

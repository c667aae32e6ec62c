#include "companions/plot/sheets.h"

#include <algorithm>
#include <cstdio>
#include <fmt/format.h>
#include <set>

namespace lcp::companions {

namespace {

constexpr std::size_t ALLSHOWN = 8; // conductors

// The element that a finding names: "between them (3,2)".
bool namedIn(const Finding& f, Place& place) {
  const auto at = f.where.rfind('(');
  unsigned i = 0, j = 0;
  if (at == std::string::npos || std::sscanf(&f.where[at], "(%u,%u)", &i, &j) != 2) return false;
  place = {i - 1, j - 1};
  return i > 0 && j > 0;
}

void addCurve(Sheet& sheet, std::string name, std::size_t points, bool model) {
  Element e;
  e.name = std::move(name);
  e.line.resize(points);
  if (model) e.model.resize(points);
  sheet.functions.elements.push_back(std::move(e));
}

} // namespace

std::vector<Place> placesOf(std::size_t n, bool symmetric, const std::vector<Finding>& findings) {
  std::set<Place> places;
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = symmetric ? i : 0; j < n; ++j) {
      if (n <= ALLSHOWN || i == j || i == 0 || j == 0) places.insert({i, j});
    }
  }
  for (const Finding& f : findings) {
    Place p{};
    if (!namedIn(f, p) || p.i >= n || p.j >= n) continue;
    if (symmetric && p.i > p.j) std::swap(p.i, p.j);
    places.insert(p);
  }
  return {places.begin(), places.end()};
}

Sheet matrixSheet(Functions F, std::size_t n, std::size_t points, bool model,
                  const std::vector<Finding>& findings, bool symmetric) {
  const std::size_t all = symmetric ? n * (n + 1) / 2 : n * n;
  Sheet sheet{std::move(F), placesOf(n, symmetric, findings)};
  for (const Place& p : sheet.places)
    addCurve(sheet, fmt::format("({},{})", p.i + 1, p.j + 1), points, model);
  if (sheet.places.size() < all)
    sheet.functions.note += fmt::format("{} of {} elements: the diagonal, the first row{}, and "
                                        "those that a verdict names. ",
                                        sheet.places.size(), all, symmetric ? "" : " and column");
  return sheet;
}

Sheet modeSheet(Functions F, std::size_t n, std::size_t points, bool model) {
  Sheet sheet{std::move(F), {}};
  for (std::size_t m = 0; m < n; ++m) {
    sheet.places.push_back({m, m});
    addCurve(sheet, fmt::format("mode {}", m + 1), points, model);
  }
  return sheet;
}

} // namespace lcp::companions

// Which elements of the matrices of a line a page has, and room for their curves.
#pragma once

#include "companions/plot/functions.h"
#include "companions/shared/verdicts.h"

#include <compare>

namespace lcp::companions {

struct Place {
  std::size_t i, j;
  auto operator<=>(const Place&) const = default;
};

// The elements of a matrix of order n, in its upper triangle if it is symmetric. Up to eight
// conductors all of them; else the diagonal, the first row and column, and those that findings
// name.
std::vector<Place> placesOf(std::size_t n, bool symmetric, const std::vector<Finding>& findings);

// Functions with a curve for each place; a mode stands at (m, m).
struct Sheet {
  Functions functions;
  std::vector<Place> places;
};

enum class Of { Line, Model };

// Room for so many points of the line, and of its model if it has one.
Sheet matrixSheet(Functions F, std::size_t n, std::size_t points, bool model,
                  const std::vector<Finding>& findings, bool symmetric);
Sheet modeSheet(Functions F, std::size_t n, std::size_t points, bool model);

// Sets the values at point k to value(i, j).
template <class Value> void take(Sheet& sheet, Of side, std::size_t k, Value value) {
  for (std::size_t e = 0; e < sheet.places.size(); ++e) {
    Element& element = sheet.functions.elements[e];
    auto& values = side == Of::Line ? element.line : element.model;
    values[k] = value(sheet.places[e].i, sheet.places[e].j);
  }
}

} // namespace lcp::companions

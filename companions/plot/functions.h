// Functions of frequency in the form used by a page.
//
// They hold complex values of the line and of its model, thinned to what a screen can show and
// packed into text.
#pragma once

#include "companions/shared/rational.h"

#include <nlohmann/json.hpp>
#include <span>
#include <string>
#include <vector>

namespace lcp::companions {

using Json = nlohmann::ordered_json;

struct Element {
  std::string name;                 // "(1,2)", "mode 1"
  std::vector<Complex> line, model; // one value per frequency; empty if only the other is given
};

struct Functions {
  std::string id;       // "Yc": one word, unique on a page
  std::string title;    // "Characteristic admittance"
  std::string kind;     // how it is drawn: a name in the page's table of views
  std::string unit;     // unit of its magnitude
  double reference = 0; // for deviations; 0: the magnitude of the line at each point
  double delay = 0;     // s, removed from the values
  std::string note = {};
  std::vector<Element> elements = {};
};

struct Frequencies {
  std::vector<double> f;      // Hz, ascending
  std::vector<bool> ofTheFit; // whether a point is one of the fit's; empty if there is no fit
};

// Limits: numbers in all curves of a set of functions together, and points per curve.
struct Room {
  std::size_t numbers, points;
};

// The functions at the kept frequencies: every few points, the points of the fit, and the extremes
// of each curve. {"f":, "fit":, "functions": [...]} with packed numbers. Functions with very many
// elements lose the least important ones.
Json packed(const Frequencies& at, std::vector<Functions> all, const Room& room);

// Numbers in single precision as base64, four bytes each, low byte first. Too small numbers become
// 0; NaN stays NaN.
std::string packedNumbers(std::span<const double> values);

} // namespace lcp::companions

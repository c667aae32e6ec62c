// Functions of frequency as a page holds them: complex values of the line and, beside them, of its
// model, thinned to what a screen can show and packed into text.
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
  std::vector<Complex> line, model; // one a frequency; of one alone the other is empty
};

struct Functions {
  std::string id;       // "Yc": one word, unique in a page
  std::string title;    // "Characteristic admittance"
  std::string kind;     // what is drawn of it: a name in the table of views of the page
  std::string unit;     // of its magnitude
  double reference = 0; // of deviations; 0: each is taken of the magnitude of the line there
  double delay = 0;     // s, taken out of the values
  std::string note = {};
  std::vector<Element> elements = {};
};

struct Frequencies {
  std::vector<double> f;      // Hz, rising
  std::vector<bool> ofTheFit; // the points that the fit looked at; empty when there is none
};

// Numbers that the curves of a set of functions may take up together, and points of a curve.
struct Room {
  std::size_t numbers, points;
};

// The functions at the frequencies that are kept: every few of them, the points of the fit, and
// where a curve has its extremes. {"f":, "fit":, "functions": [...]}, numbers packed. Of functions
// with very many elements those are left out that come last.
Json packed(const Frequencies& at, std::vector<Functions> all, const Room& room);

// Numbers of single precision as base64, four bytes each, low byte first. What is too small for
// them is 0, and what is none stays so.
std::string packedNumbers(std::span<const double> values);

// Elements of matrices over frequency: all, or of symmetric ones the upper triangle.
std::vector<Element> elementsOf(const std::vector<Matrix>& line, const std::vector<Matrix>& model,
                                bool symmetric);

} // namespace lcp::companions

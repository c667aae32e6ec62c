#include "support/compare_text.h"

#include "support/child.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <regex>
#include <vector>

namespace lcp::test {

namespace {

struct Line {
  std::string mask; // the line with what two close values may write differently blotted out
  std::vector<double> values, units;
  double largest = 0.0;
  bool matrix = false; // numbers and commas alone
};

Line taken(const std::string& text) {
  static const std::regex number(R"([-+]?\d*\.(\d+)(?:E([-+]\d+))?)");
  Line line{.mask = text, .values = {}, .units = {}};
  for (std::sregex_iterator m(text.begin(), text.end(), number), end; m != end; ++m) {
    const int exponent = (*m)[2].matched ? std::stoi((*m)[2]) : 0;
    line.values.push_back(std::stod(m->str()));
    line.units.push_back(std::pow(10.0, exponent - m->length(1)));
    line.largest = std::max(line.largest, std::fabs(line.values.back()));
    // all before the point, digits and signs behind it
    const auto start = line.mask.begin() + m->position(), point = start + m->str().find('.');
    std::fill(start, point, ' ');
    std::replace_if(
        point, start + m->length(), [](char c) { return c == '-' || c == '+'; }, '+');
    std::replace_if(
        point, start + m->length(), [](char c) { return c >= '0' && c <= '9'; }, '9');
  }
  line.matrix = line.mask.find(',') != std::string::npos &&
                line.mask.find_first_not_of(" .,9E+") == std::string::npos;
  return line;
}

// The largest number of the matrix that begins with a line.
double matrixScale(const std::vector<std::string>& lines, std::size_t at) {
  double largest = 0.0;
  for (Line line = taken(lines[at]); line.matrix; line = taken(lines[++at]))
    largest = std::max(largest, line.largest);
  return largest;
}

std::string wordsOf(const std::string& text) {
  static const std::regex number(R"(-?[0-9]+(\.[0-9]+)?([eE][-+][0-9]+)?)");
  return std::regex_replace(text, number, "#");
}

Free freedom(std::size_t line, const Tolerances& t) {
  for (const FreeLines& f : t.free) {
    if (line >= f.first && line <= f.last) return f.what;
  }
  return Free::NOTHING;
}

bool agree(const Line& expected, const Line& actual, double scale, const Tolerances& t, Free free) {
  if (expected.mask != actual.mask || expected.values.size() != actual.values.size()) return false;
  if (free == Free::BASIS) return expected.mask.find("NaN") == std::string::npos;
  for (std::size_t i = 0; i < expected.values.size(); ++i) {
    const double value = expected.values[i];
    const double unit = 1.0001 * std::max(expected.units[i], actual.units[i]);
    const double may = expected.matrix
                           ? t.matrix * scale
                           : std::max(t.scalar * std::fabs(value), t.line * expected.largest);
    const double other =
        free == Free::SIGNS ? std::copysign(actual.values[i], value) : actual.values[i];
    if (!(std::fabs(value - other) <= std::max(may, unit))) return false;
  }
  return expected.mask.find("NaN") == std::string::npos;
}

} // namespace

std::string textDifferences(const std::string& expected, const std::string& actual,
                            const Tolerances& t) {
  // what stands behind the last line end is a line
  const auto wanted = splitLines(expected + "."), got = splitLines(actual + ".");
  double scale = 0.0;
  bool inMatrix = false;
  for (std::size_t i = 0; i < std::min(wanted.size(), got.size()); ++i) {
    const Line line = taken(wanted[i]);
    if (line.matrix && !inMatrix) scale = matrixScale(wanted, i);
    inMatrix = line.matrix;
    const Free free = freedom(i + 1, t);
    if (free == Free::WIDTH ? wordsOf(got[i]) != wordsOf(wanted[i])
                            : !agree(line, taken(got[i]), scale, t, free))
      return fmt::format("line {}: |{}|, expected |{}|\n", i + 1, got[i], wanted[i]);
  }
  if (wanted.size() == got.size()) return "";
  return fmt::format("{} line ends, expected {}\n", got.size() - 1, wanted.size() - 1);
}

} // namespace lcp::test

#include "support/compare_text.h"

#include "support/child.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <vector>

namespace lcp::test {

namespace {

struct Line {
  std::string mask; // the line with parts that close values may write differently blanked
  std::vector<double> values, units;
  double largest = 0.0;
  bool matrix = false; // numbers and commas alone
};

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isSign(char c) { return c == '-' || c == '+'; }

std::size_t afterDigits(const std::string& text, std::size_t at) {
  while (at < text.size() && isDigit(text[at])) ++at;
  return at;
}

// Position after an exponent that starts here: a letter, a sign and digits.
std::size_t afterExponent(const std::string& text, std::size_t at, const char* letters) {
  if (at + 2 >= text.size() || std::string(letters).find(text[at]) == std::string::npos) return at;
  return isSign(text[at + 1]) && isDigit(text[at + 2]) ? afterDigits(text, at + 2) : at;
}

// A real number of the text: [sign][digits].digits[E sign digits], by positions.
struct Place {
  std::size_t start, point, exponent, end; // without an exponent it is the end
};

// The first number from a position on, or an empty one at the end.
Place numberFrom(const std::string& text, std::size_t from) {
  for (std::size_t at = text.find('.', from); at < text.size(); at = text.find('.', at + 1)) {
    const std::size_t exponent = afterDigits(text, at + 1);
    if (exponent == at + 1) continue;
    std::size_t start = at;
    while (start > from && isDigit(text[start - 1])) --start;
    if (start > from && isSign(text[start - 1])) --start;
    return {start, at, exponent, afterExponent(text, exponent, "E")};
  }
  return {text.size(), text.size(), text.size(), text.size()};
}

Line taken(const std::string& text) {
  Line line{.mask = text, .values = {}, .units = {}};
  for (Place p = numberFrom(text, 0); p.start < text.size(); p = numberFrom(text, p.end)) {
    const int exponent = p.end > p.exponent ? std::stoi(text.substr(p.exponent + 1)) : 0;
    line.values.push_back(std::stod(text.substr(p.start, p.end - p.start)));
    line.units.push_back(std::pow(10.0, exponent - static_cast<int>(p.exponent - p.point - 1)));
    line.largest = std::max(line.largest, std::fabs(line.values.back()));
    for (std::size_t i = p.start; i < p.end; ++i) { // digits and signs after the point stay marked
      char& c = line.mask[i];
      if (i < p.point) c = ' ';
      if (isSign(c)) c = '+';
      if (isDigit(c)) c = '9';
    }
  }
  line.matrix = line.mask.find(',') != std::string::npos &&
                line.mask.find_first_not_of(" .,9E+") == std::string::npos;
  return line;
}

// The largest number of the matrix that starts at a line.
double matrixScale(const std::vector<std::string>& lines, std::size_t at) {
  double largest = 0.0;
  for (Line line = taken(lines[at]); line.matrix; line = taken(lines[++at]))
    largest = std::max(largest, line.largest);
  return largest;
}

// The text with each number, [-]digits[.digits][e sign digits], replaced by one sign.
std::string wordsOf(const std::string& text) {
  std::string words;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t digits = at + (text[at] == '-' ? 1 : 0);
    std::size_t end = afterDigits(text, digits);
    if (end == digits) {
      words += text[at++];
      continue;
    }
    if (end < text.size() && text[end] == '.') {
      const std::size_t fraction = afterDigits(text, end + 1);
      if (fraction > end + 1) end = fraction;
    }
    at = afterExponent(text, end, "eE");
    words += '#';
  }
  return words;
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
  // text after the last line end counts as a line
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

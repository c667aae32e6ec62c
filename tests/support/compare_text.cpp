#include "support/compare_text.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <fmt/format.h>
#include <regex>
#include <sstream>
#include <vector>

namespace lcp::test {

namespace {

constexpr int SHOWN = 5; // lines that differ

struct Line {
  std::string mask; // the line with its real numbers blotted out
  std::vector<double> values, units;
  bool matrix = false; // numbers and commas alone
};

using Lines = std::vector<std::string>;

// Sign, digits, point, digits, and an exponent: E+01, or +101 without its letter.
Line taken(const std::string& text) {
  static const std::regex number(R"([-+]?\d*\.(\d+)(?:[Ee]([-+]?\d+)|([-+]\d{3}))?(?![.\w]))");
  Line line;
  line.mask = text;
  std::ptrdiff_t last = 0;
  for (std::sregex_iterator m(text.begin(), text.end(), number), end; m != end; ++m) {
    const std::ptrdiff_t at = m->position();
    const char before = at > last ? text[static_cast<std::size_t>(at - 1)] : ' ';
    if (before == '.' || std::isalnum(static_cast<unsigned char>(before)) != 0) continue;
    last = at + m->length();
    const std::ptrdiff_t point = m->position(1) - 1;
    const std::string exponent = (*m)[2].str() + (*m)[3].str();
    line.values.push_back(std::stod(
        text.substr(static_cast<std::size_t>(at), static_cast<std::size_t>(point + 1 - at) +
                                                      static_cast<std::size_t>(m->length(1))) +
        "e" + (exponent.empty() ? "0" : exponent)));
    line.units.push_back(std::pow(10.0, std::atoi(exponent.c_str()) - m->length(1)));
    // What two close values may write differently: all before the point, digits and signs behind.
    std::fill(line.mask.begin() + at, line.mask.begin() + point, ' ');
    for (auto c = line.mask.begin() + point; c != line.mask.begin() + last; ++c) {
      if (*c != '.' && *c != 'E') *c = *c == '-' || *c == '+' ? '+' : '9';
    }
  }
  line.matrix = line.mask.find(',') != std::string::npos &&
                line.mask.find_first_not_of(" .,9E+") == std::string::npos;
  return line;
}

double largestOf(const std::vector<double>& values) {
  double largest = 0.0;
  for (const double v : values) largest = std::max(largest, std::fabs(v));
  return largest;
}

// The largest number of the matrix that a line is in.
double matrixScale(const Lines& lines, std::size_t at) {
  while (at > 0 && taken(lines[at - 1]).matrix) --at;
  double largest = 0.0;
  for (; at < lines.size(); ++at) {
    const Line line = taken(lines[at]);
    if (!line.matrix) break;
    largest = std::max(largest, largestOf(line.values));
  }
  return largest;
}

bool agree(const Lines& wanted, const std::string& got, std::size_t at, const Tolerances& t) {
  if (wanted[at].find("NaN") != std::string::npos) return false;
  if (wanted[at] == got) return true;
  const Line expected = taken(wanted[at]), actual = taken(got);
  if (expected.mask != actual.mask || expected.values.size() != actual.values.size()) return false;
  const bool matrix = expected.matrix;
  const double common =
      matrix ? t.matrix * matrixScale(wanted, at) : t.line * largestOf(expected.values);
  for (std::size_t i = 0; i < expected.values.size(); ++i) {
    const double own = matrix ? 0.0 : t.scalar * std::fabs(expected.values[i]);
    const double unit = 1.0001 * std::max(expected.units[i], actual.units[i]);
    const double may = std::max({common, own, unit});
    if (!(std::fabs(expected.values[i] - actual.values[i]) <= may)) return false;
  }
  return true;
}

Lines split(const std::string& text) {
  Lines lines(1);
  for (const char c : text) {
    lines.back() += c;
    if (c != '\n') continue;
    lines.back().pop_back();
    lines.emplace_back();
  }
  return lines;
}

} // namespace

std::string textDifferences(const std::string& expected, const std::string& actual,
                            const Tolerances& t) {
  const Lines wanted = split(expected), got = split(actual);
  std::string report;
  if (wanted.size() != got.size()) {
    report = fmt::format("{} line ends, expected {}\n", got.size() - 1, wanted.size() - 1);
  }
  int shown = 0;
  for (std::size_t i = 0; i < std::min(wanted.size(), got.size()) && shown < SHOWN; ++i) {
    if (agree(wanted, got[i], i, t)) continue;
    ++shown;
    report += fmt::format("line {}: |{}|, expected |{}|\n", i + 1, got[i], wanted[i]);
  }
  return report;
}

} // namespace lcp::test

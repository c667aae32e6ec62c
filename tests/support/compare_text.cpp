#include "support/compare_text.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <complex>
#include <cstdlib>
#include <fmt/format.h>
#include <sstream>
#include <vector>

namespace lcp::test {

namespace {

constexpr int SHOWN = 10; // differences shown before the rest is only counted

bool digit(char c) { return c >= '0' && c <= '9'; }
bool letter(char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_'; }

struct Real {
  std::size_t begin = 0; // first column, counted from 0, sign included
  std::size_t end = 0;   // behind the last
  double value = 0.0;
  double unit = 0.0; // weight of the last digit
};

struct Line {
  std::string mask; // the line with its real numbers blotted out: digits 9, signs gone
  std::vector<Real> reals;
  std::vector<bool> pairs; // does a complex pair begin at this number?
  bool onlyPairs = false;
  bool hasNaN = false;
};

std::size_t digitsEnd(std::string_view s, std::size_t at) {
  while (at < s.size() && digit(s[at])) ++at;
  return at;
}

// The end of the exponent that may stand at this place: E+01, or +101 without its letter.
std::size_t exponentEnd(std::string_view s, std::size_t at) {
  std::size_t p = at;
  const bool lettered = p < s.size() && (s[p] == 'E' || s[p] == 'e');
  if (lettered) ++p;
  const bool sign = p < s.size() && (s[p] == '+' || s[p] == '-');
  if (sign) ++p;
  const std::size_t end = digitsEnd(s, p);
  return (lettered ? end > p : sign && end == p + 3) ? end : at;
}

Real realAt(std::string_view s, std::size_t begin, std::size_t point, std::size_t mantissaEnd,
            std::size_t end) {
  Real r{begin, end, 0.0, 0.0};
  std::string exponent(s.substr(mantissaEnd, end - mantissaEnd));
  if (!exponent.empty() && (exponent[0] == 'E' || exponent[0] == 'e')) exponent.erase(0, 1);
  const std::string mantissa(s.substr(begin, mantissaEnd - begin));
  r.value = std::strtod((mantissa + (exponent.empty() ? "" : "e" + exponent)).c_str(), nullptr);
  r.unit =
      std::pow(10.0, std::atoi(exponent.c_str()) - static_cast<double>(mantissaEnd - point - 1));
  return r;
}

// A real number that begins at this column: sign, digits, a point among them, an exponent. It may
// touch the number before it, which ends at `previous`.
bool findReal(std::string_view s, std::size_t begin, std::size_t previous, Real& r) {
  if (begin > previous && (letter(s[begin - 1]) || s[begin - 1] == '.')) return false;
  const bool sign = s[begin] == '-' || s[begin] == '+';
  const std::size_t whole = begin + (sign ? 1 : 0);
  const std::size_t point = digitsEnd(s, whole);
  if (point >= s.size() || s[point] != '.') return false;
  const std::size_t mantissaEnd = digitsEnd(s, point + 1);
  if (mantissaEnd - whole < 2) return false; // a full stop alone
  const std::size_t end = exponentEnd(s, mantissaEnd);
  if (end < s.size() && (letter(s[end]) || s[end] == '.')) return false;
  r = realAt(s, begin, point, mantissaEnd, end);
  return true;
}

// The columns of a number without what two close values may write differently: the digits, the
// signs, and the leading 0 that has no room beside a sign.
void blot(std::string& mask, const Real& r) {
  if (mask[r.begin] == '-' || mask[r.begin] == '+') mask[r.begin] = ' ';
  const std::size_t first = r.begin + (mask[r.begin] == ' ' ? 1 : 0);
  if (mask[first] == '0' && mask[first + 1] == '.') mask[first] = ' ';
  for (std::size_t i = first; i < r.end; ++i) {
    if (digit(mask[i])) mask[i] = '9';
    if (mask[i] == '-') mask[i] = '+';
  }
}

bool holdsNaN(std::string_view s) {
  for (std::size_t i = 0; i + 3 <= s.size(); ++i) {
    const bool word = s.substr(i, 3) == "NaN" || s.substr(i, 3) == "nan";
    const bool alone = (i == 0 || !letter(s[i - 1])) && (i + 3 == s.size() || !letter(s[i + 3]));
    if (word && alone) return true;
  }
  return false;
}

// Marks the numbers behind which a comma and another number stand, and tells whether the line
// consists of such pairs alone.
void findPairs(std::string_view text, Line& line) {
  line.pairs.assign(line.reals.size(), false);
  std::size_t paired = 0;
  for (std::size_t i = 0; i + 1 < line.reals.size(); ++i) {
    const std::size_t comma = line.reals[i].end;
    const std::size_t next = line.reals[i + 1].begin;
    if (text[comma] != ',') continue;
    if (text.find_first_not_of(' ', comma + 1) != next) continue;
    line.pairs[i] = true;
    paired += 2;
    ++i;
  }
  std::string rest(text);
  for (const Real& r : line.reals) rest.replace(r.begin, r.end - r.begin, r.end - r.begin, ' ');
  line.onlyPairs =
      paired > 0 && paired == line.reals.size() &&
      rest.find_first_not_of(" ,") == std::string::npos &&
      static_cast<std::size_t>(std::count(rest.begin(), rest.end(), ',')) * 2 == paired;
}

Line taken(std::string_view text) {
  Line line;
  line.mask = text;
  std::size_t previous = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    Real r;
    if (!findReal(text, i, previous, r)) continue;
    previous = r.end;
    line.reals.push_back(r);
    blot(line.mask, r);
    i = r.end - 1;
  }
  findPairs(text, line);
  line.hasNaN = holdsNaN(text);
  return line;
}

std::vector<std::string_view> splitLines(std::string_view text) {
  std::vector<std::string_view> lines;
  for (std::size_t at = 0;;) {
    const std::size_t end = text.find('\n', at);
    lines.push_back(text.substr(at, end == std::string_view::npos ? end : end - at));
    if (end == std::string_view::npos) return lines;
    at = end + 1;
  }
}

std::complex<double> pairAt(const Line& line, std::size_t i) {
  return {line.reals[i].value, line.reals[i + 1].value};
}

double largestElement(const Line& line) {
  double largest = 0.0;
  for (std::size_t i = 0; i < line.reals.size(); i += 2) {
    largest = std::max(largest, std::abs(pairAt(line, i)));
  }
  return largest;
}

double largestNumber(const Line& line) {
  double largest = 0.0;
  for (const Real& r : line.reals) largest = std::max(largest, std::fabs(r.value));
  return largest;
}

// By how much numbers of this size may differ that were written with this last digit. The small
// excess is the rounding of the difference itself.
double allowed(double tolerance, double size, double unit) {
  return tolerance > 0.0 ? std::max(tolerance * size, 1.0001 * unit) : 0.0;
}

// Does the number (or pair) i of a line differ? `scale` is the largest of its matrix.
bool differs(const Line& expected, const Line& actual, std::size_t i, double scale,
             const Tolerances& t) {
  const std::size_t last = expected.pairs[i] ? i + 1 : i;
  const double own = last > i ? std::abs(pairAt(expected, i)) : std::fabs(expected.reals[i].value);
  const double tolerance = expected.onlyPairs ? t.matrix : t.scalar;
  const double noise = expected.onlyPairs ? 0.0 : t.line * largestNumber(expected);
  for (std::size_t k = i; k <= last; ++k) {
    const double unit = std::max(expected.reals[k].unit, actual.reals[k].unit);
    const double away = std::fabs(expected.reals[k].value - actual.reals[k].value);
    const double may = allowed(tolerance, expected.onlyPairs ? scale : own, unit);
    if (!(away <= std::max(may, noise))) return true;
  }
  return false;
}

class Comparison {
public:
  Comparison(std::string_view expected, std::string_view actual, const Tolerances& t)
      : wanted(splitLines(expected)), got(splitLines(actual)), tolerances(t) {}

  std::string run() {
    const std::size_t n = std::min(wanted.size(), got.size());
    for (std::size_t i = 0; i < n; ++i) compareLine(i);
    if (wanted.size() != got.size()) {
      report += fmt::format("{} line ends, expected {}\n", got.size() - 1, wanted.size() - 1);
      if (got.size() > n) report += fmt::format("  first of more: |{}|\n", got[n]);
      if (wanted.size() > n) report += fmt::format("  first missing: |{}|\n", wanted[n]);
    }
    if (count > SHOWN) report += fmt::format("and {} more lines\n", count - SHOWN);
    return report;
  }

private:
  // The largest element of the matrix that the line is in; its lines are consecutive.
  double matrixScale(std::size_t i, const Line& line) {
    if (i < matrixEnd) return scale;
    scale = 0.0;
    matrixEnd = i;
    for (Line next = line; next.onlyPairs; next = taken(wanted[matrixEnd])) {
      scale = std::max(scale, largestElement(next));
      if (++matrixEnd == wanted.size()) break;
    }
    return scale;
  }

  void compareLine(std::size_t i) {
    const Line expected = taken(wanted[i]);
    const double largest = matrixScale(i, expected);
    const Line actual = taken(got[i]);
    if (expected.hasNaN || actual.hasNaN) return tell(i, "NaN");
    if (expected.mask != actual.mask || expected.reals.size() != actual.reals.size()) {
      return tell(i, "text or columns");
    }
    for (std::size_t k = 0; k < expected.reals.size(); k += expected.pairs[k] ? 2 : 1) {
      if (differs(expected, actual, k, largest, tolerances)) {
        return tell(i, fmt::format("number at column {}", expected.reals[k].begin + 1));
      }
    }
  }

  void tell(std::size_t i, std::string_view what) {
    if (++count > SHOWN) return;
    report += fmt::format("line {}: {}\n  wrote    |{}|\n  expected |{}|\n", i + 1, what, got[i],
                          wanted[i]);
  }

  std::vector<std::string_view> wanted;
  std::vector<std::string_view> got;
  Tolerances tolerances;
  std::size_t matrixEnd = 0; // behind the last line of the matrix met last
  double scale = 0.0;
  int count = 0;
  std::string report;
};

} // namespace

bool readTolerances(std::string_view text, Tolerances& t) {
  t = {-1.0, -1.0, 0.0};
  std::istringstream in{std::string(text)};
  for (std::string line; std::getline(in, line);) {
    std::istringstream words(line);
    std::string name;
    std::string rest;
    double value = -1.0;
    if (!(words >> name >> value) || words >> rest || !(value >= 0.0)) return false;
    if (name != "matrix" && name != "scalar" && name != "line") return false;
    (name == "matrix" ? t.matrix : name == "scalar" ? t.scalar : t.line) = value;
  }
  return t.matrix >= 0.0 && t.scalar >= 0.0;
}

std::string textDifferences(std::string_view expected, std::string_view actual,
                            const Tolerances& t) {
  return Comparison(expected, actual, t).run();
}

} // namespace lcp::test

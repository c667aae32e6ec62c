#include "base/number_forms.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fmt/format.h>
#include <string_view>

namespace lcp {

namespace {

std::string asterisks(int width) { return std::string(static_cast<std::size_t>(width), '*'); }

std::string rightAligned(std::string_view text, int width) {
  if (static_cast<int>(text.size()) > width) return asterisks(width);
  return std::string(static_cast<std::size_t>(width) - text.size(), ' ').append(text);
}

// NaN and Infinity as words: "Infinity" if it fits, else "Inf".
std::string wordField(double value, int width) {
  if (std::isnan(value)) return rightAligned("NaN", width);
  const bool negative = std::signbit(value);
  const std::string_view word = width - (negative ? 1 : 0) >= 8 ? "Infinity" : "Inf";
  return rightAligned(fmt::format("{}{}", negative ? "-" : "", word), width);
}

// The text of a number, without its leading 0 if the field has no room for it.
std::string withoutSpareZero(std::string text, int width) {
  if (static_cast<int>(text.size()) > width) {
    const std::size_t zero = text[0] == '-' ? 1 : 0;
    if (text.compare(zero, 2, "0.") == 0 && text.size() > zero + 2) text.erase(zero, 1);
  }
  return rightAligned(text, width);
}

// Sign, digits and decimal exponent of a value rounded to a number of significant digits:
// value = 0.digits x 10^exponent.
struct Decimal {
  bool negative = false;
  std::string digits;
  int exponent = 0;
};

Decimal rounded(double value, int digits) {
  Decimal d;
  d.negative = std::signbit(value);
  if (value == 0.0) {
    d.digits.assign(static_cast<std::size_t>(digits), '0');
    return d;
  }
  const std::string text = fmt::format("{:.{}e}", std::fabs(value), digits - 1);
  const std::size_t e = text.find('e');
  d.digits = text.substr(0, e);
  if (digits > 1) d.digits.erase(1, 1); // the point
  d.exponent = std::atoi(text.c_str() + e + 1) + 1;
  return d;
}

double powerOfTen(int exponent) {
  double power = 1.0;
  for (int i = 0; i < exponent; ++i) power *= 10.0;
  return power;
}

std::string exponentText(int exponent) {
  if (std::abs(exponent) > 99) return fmt::format("{:+04d}", exponent);
  return fmt::format("E{:+03d}", exponent);
}

} // namespace

std::string integerField(long long value, int width) {
  return rightAligned(fmt::format("{}", value), width);
}

std::string fixedField(double value, int width, int decimals) {
  if (!std::isfinite(value)) return wordField(value, width);
  std::string text = fmt::format("{:.{}f}", value, decimals);
  if (decimals == 0) text += '.';
  return withoutSpareZero(std::move(text), width);
}

std::string scientificField(double value, int width, int digits) {
  if (!std::isfinite(value)) return wordField(value, width);
  const Decimal d = rounded(value, digits);
  const std::string_view sign = d.negative ? "-" : "";
  return withoutSpareZero(fmt::format("{}0.{}{}", sign, d.digits, exponentText(d.exponent)), width);
}

std::string generalField(double value, int width, int digits) {
  if (!std::isfinite(value)) return wordField(value, width);
  // Compared in floating point, as in a Fortran formatted write: a value one rounding error below
  // an edge, such as 9.9999999499999994 with 8 digits, counts as equal to the edge.
  const double size = std::fabs(value);
  const double belowEdge = 1.0 - 0.5 / powerOfTen(digits);
  const bool small = size != 0.0 && size < 0.1 * belowEdge;
  if (small || powerOfTen(digits) - size <= 0.5) return scientificField(value, width, digits);

  int whole = size == 0.0 ? 1 : 0; // digits before the point
  for (double power = 1.0; whole < digits && size >= power * belowEdge; power *= 10.0) ++whole;
  const int blanks = std::min(4, width - 1);
  std::string text = fixedField(value, width - blanks, digits - whole);
  return text.front() == '*' ? asterisks(width)
                             : text.append(static_cast<std::size_t>(blanks), ' ');
}

std::string pointedField(double value, int width, int decimals) {
  if (!std::isfinite(value)) return wordField(value, width);
  const Decimal d = rounded(value, decimals + 1);
  const int exponent = value == 0.0 ? 0 : d.exponent - 1;
  return rightAligned(fmt::format("{}{}.{}{}", d.negative ? "-" : "", d.digits.substr(0, 1),
                                  d.digits.substr(1), exponentText(exponent)),
                      width);
}

} // namespace lcp

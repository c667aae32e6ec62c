#include "base/number_forms.h"

#include <cmath>
#include <cstdlib>
#include <fmt/format.h>
#include <string_view>

namespace lcp {

namespace {

std::string asterisks(int width) { return std::string(static_cast<std::size_t>(width), '*'); }

std::string rightAligned(std::string text, int width) {
  if (static_cast<int>(text.size()) > width) return asterisks(width);
  return std::string(static_cast<std::size_t>(width) - text.size(), ' ') + text;
}

// NaN and Infinity, in the longest form that fits. A plus sign stands where there is room.
std::string wordField(double value, int width) {
  if (std::isnan(value)) return rightAligned("NaN", width);
  const bool negative = std::signbit(value);
  const std::string_view sign = negative ? "-" : "+";
  if (width > 8 || (negative && width == 9))
    return rightAligned(fmt::format("{}Infinity", sign), width);
  if (width == 8 && !negative) return "Infinity";
  if (width > 3) return rightAligned(fmt::format("{}Inf", sign), width);
  if (width == 3 && !negative) return "Inf";
  return asterisks(width);
}

// A number's text with its leading 0, or without it when the field has no room for it.
std::string withoutSpareZero(std::string text, int width) {
  if (static_cast<int>(text.size()) > width) {
    const std::size_t zero = text[0] == '-' ? 1 : 0;
    if (text.compare(zero, 2, "0.") == 0 && text.size() > zero + 2) text.erase(zero, 1);
  }
  return rightAligned(std::move(text), width);
}

// Sign, significant digits and decimal exponent of a value rounded to that many digits:
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
  const int exponent = value == 0.0 ? 1 : rounded(value, digits).exponent;
  if (exponent < 0 || exponent > digits) return scientificField(value, width, digits);
  return fixedField(value, width - 4, digits - exponent) + "    ";
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

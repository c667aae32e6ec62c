#include "support/exact_fields.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace lcp::test {

namespace {

// A magnitude, 0.digits x 10^point.
struct Exact {
  std::string digits;
  int point = 0;
};

void multiply(std::string& lowestFirst, std::uint64_t by) {
  std::uint64_t carry = 0;
  for (std::size_t i = 0; i < lowestFirst.size() || carry > 0; ++i) {
    if (i == lowestFirst.size()) lowestFirst += '0';
    carry += static_cast<std::uint64_t>(lowestFirst[i] - '0') * by;
    lowestFirst[i] = static_cast<char>('0' + carry % 10);
    carry /= 10;
  }
}

Exact exactly(double value) {
  int e = 0;
  const double fraction = std::frexp(std::fabs(value), &e);
  std::string digits = std::to_string(static_cast<std::uint64_t>(std::ldexp(fraction, 53)));
  std::reverse(digits.begin(), digits.end());
  e -= 53;
  constexpr int ATONCE = 22; // factors: 5^22 is below 2^53
  for (int i = std::abs(e); i > 0; i -= ATONCE)
    multiply(digits, static_cast<std::uint64_t>(std::pow(e > 0 ? 2 : 5, std::min(i, ATONCE))));
  std::reverse(digits.begin(), digits.end());
  return {digits, static_cast<int>(digits.size()) + std::min(e, 0)};
}

// The nearest integer to the magnitude times 10^decimals, in decimal.
std::string nearest(const Exact& x, int decimals) {
  const int kept = x.point + decimals;
  if (kept < 0) return "0";
  std::string text = "0" + x.digits;
  text.resize(std::max(text.size(), static_cast<std::size_t>(kept) + 2), '0');
  const std::string rest = text.substr(static_cast<std::size_t>(kept) + 1);
  text.resize(static_cast<std::size_t>(kept) + 1);
  const bool tie = rest[0] == '5' && rest.find_first_not_of('0', 1) == std::string::npos;
  if (tie ? text.back() % 2 == 1 : rest[0] >= '5') {
    const std::size_t last = text.find_last_not_of('9'); // the digit before it is 0
    ++text[last];
    std::fill(text.begin() + static_cast<std::ptrdiff_t>(last) + 1, text.end(), '0');
  }
  return text.erase(0, std::min(text.find_first_not_of('0'), text.size() - 1));
}

// 0.text x 10^exponent, so many digits.
struct Rounded {
  std::string text;
  int exponent = 0;
};

Rounded rounded(double value, int digits) {
  if (value == 0) return {std::string(static_cast<std::size_t>(digits), '0'), 0};
  const Exact x = exactly(value);
  Rounded r{nearest(x, digits - x.point), x.point};
  if (r.text.size() > static_cast<std::size_t>(digits))
    r = {r.text.substr(0, r.text.size() - 1), x.point + 1};
  return r;
}

std::string exponentText(int e) {
  const std::string size = std::to_string(std::abs(e));
  return (std::abs(e) > 99 ? "" : "E") + std::string(e < 0 ? "-" : "+") +
         (size.size() < 2 ? "0" : "") + size;
}

// Right-aligned; the zero before the point is dropped where there is no room, if allowed.
std::string field(double value, std::string text, int width, bool spareZero = true) {
  const auto w = static_cast<std::size_t>(width);
  const std::string sign = std::signbit(value) ? "-" : "";
  if (spareZero && sign.size() + text.size() > w && text.starts_with("0.") && text.size() > 2)
    text.erase(0, 1);
  text = sign + text;
  return text.size() > w ? std::string(w, '*') : std::string(w - text.size(), ' ') + text;
}

} // namespace

std::string exactFixed(double value, int width, int decimals) {
  std::string text = value == 0 ? "0" : nearest(exactly(value), decimals);
  const auto d = static_cast<std::size_t>(decimals);
  if (text.size() <= d) text.insert(0, d + 1 - text.size(), '0');
  return field(value, text.insert(text.size() - d, "."), width);
}

std::string exactScientific(double value, int width, int digits) {
  const Rounded r = rounded(value, digits);
  return field(value, "0." + r.text + exponentText(r.exponent), width);
}

std::string exactGeneral(double value, int width, int digits) {
  const int whole = value == 0 ? 1 : rounded(value, digits).exponent;
  if (whole < 0 || whole > digits) return exactScientific(value, width, digits);
  const std::string fixed = exactFixed(value, width - 4, digits - whole);
  return fixed + std::string(4, fixed[0] == '*' ? '*' : ' ');
}

std::string exactPointed(double value, int width, int decimals) {
  Rounded r = rounded(value, decimals + 1);
  if (value != 0) --r.exponent;
  return field(value, r.text.insert(1, ".") + exponentText(r.exponent), width, false);
}

} // namespace lcp::test

// For 10^q <= |v| < 10^(q+1) the digits are those of
//
//   m = |v| 10^(7 - q),   10^7 <= m < 10^8,
//
// rounded to an integer. Power and product are each off by at most half a rounding error, together
// by 2.3e-8 in m: where the fraction of m is farther than that from 1/2, the digits are certain.
// All other values, and those out of range, go through generalField.
#include "base/general_field.h"

#include "base/number_forms.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace lcp {

namespace {

constexpr double LEAST = 1e-36; // range of magnitudes that are written here
constexpr double MOST = 1e15;
constexpr double DOUBTFUL = 1e-6;    // distance of the fraction from 1/2
constexpr int ALLDIGITS = 100000000; // 10^GENERALDIGITS

constexpr double POWER[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                            1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22, 1e23,
                            1e24, 1e25, 1e26, 1e27, 1e28, 1e29, 1e30, 1e31, 1e32, 1e33, 1e34, 1e35,
                            1e36, 1e37, 1e38, 1e39, 1e40, 1e41, 1e42, 1e43, 1e44};

// Eight characters as one number, the first in the lowest byte. Fields are put together in
// registers, since loading text just after its pieces were stored would stall.
using Eight = std::uint64_t;

constexpr Eight BLANKS = 0x2020202020202020;
constexpr Eight ZEROS = 0x3030303030303030;

// Masks of the lowest n bytes, n = 0 to 8.
constexpr Eight FIRST[] = {0, // none
                           0xff,
                           0xffff,
                           0xffffff,
                           0xffffffff,
                           0xffffffffff,
                           0xffffffffffff,
                           0xffffffffffffff,
                           0xffffffffffffffff};

void putEight(Eight text, char* to) { std::memcpy(to, &text, sizeof text); }

// The digits of n < 10^8: split into halves, pairs and digits, all of one level at once.
Eight digitsOf(unsigned n) {
  const Eight fours = n / 10000 | static_cast<Eight>(n % 10000) << 32;
  const Eight hundreds = fours * 10486 >> 20 & 0x7f0000007f; // / 100
  const Eight pairs = hundreds | (fours - 100 * hundreds) << 16;
  const Eight tens = pairs * 103 >> 10 & 0xf000f000f000f; // / 10
  return (tens | (pairs - 10 * tens) << 8) + ZEROS;
}

// Largest q with 10^q <= 2^b, where b is the binary exponent of the number: its decimal exponent or
// one less.
int decimalExponent(double size) {
  const auto b = static_cast<int>(std::bit_cast<std::uint64_t>(size) >> 52) - 1023;
  return (b * 78913) >> 18; // log10(2) = 78913 / 2^18
}

double scaled(double size, int q) {
  const int power = GENERALDIGITS - 1 - q;
  return power >= 0 ? size * POWER[power] : size / POWER[-power];
}

// A magnitude in range as 0.digits x 10^whole; digits is 0 if they are not certain.
struct Rounded {
  unsigned digits = 0;
  int whole = 0;
};

Rounded rounded(double size) {
  int q = decimalExponent(size);
  double m = scaled(size, q);
  if (m >= ALLDIGITS) m = scaled(size, ++q);
  auto n = static_cast<std::int32_t>(m);
  const double overHalf = m - n - 0.5;
  if (std::fabs(overHalf) < DOUBTFUL) return {};
  if (overHalf > 0) ++n;
  if (n == ALLDIGITS) return {ALLDIGITS / 10, q + 2};
  return {static_cast<unsigned>(n), q + 1};
}

// Writes a magnitude from 0.1 to below 10^8 with `whole` digits before the point.
void putFixed(Eight digits, int whole, bool negative, char* to) {
  const char sign = negative ? '-' : ' ';
  putEight(BLANKS, to);
  putEight(BLANKS, to + 8);
  if (whole == 0) {
    to[1] = sign;
    to[2] = '0';
    to[3] = '.';
    putEight(digits, to + 4);
    return;
  }
  const Eight point = static_cast<Eight>('.') << 8 * (whole - 1);
  to[2] = sign;
  to[3] = static_cast<char>(digits & FIRST[1]);
  putEight((digits >> 8 & FIRST[whole - 1]) | point | (digits & ~FIRST[whole]), to + 4);
}

void putScientific(Eight digits, int exponent, bool negative, char* to) {
  const int size = std::abs(exponent);
  std::copy_n(negative ? " -0." : "  0.", 4, to);
  putEight(digits, to + 4);
  to[12] = 'E';
  to[13] = exponent < 0 ? '-' : '+';
  to[14] = static_cast<char>('0' + size / 10);
  to[15] = static_cast<char>('0' + size % 10);
}

} // namespace

void putGeneral(double value, char* to) {
  const double size = std::fabs(value);
  const bool negative = std::signbit(value);
  if (size == 0.0) {
    std::memcpy(to, negative ? "  -0.0000000    " : "   0.0000000    ", GENERALWIDTH);
    return;
  }
  const Rounded r = size >= LEAST && size < MOST ? rounded(size) : Rounded{};
  if (r.digits == 0) {
    const std::string text = generalField(value, GENERALWIDTH, GENERALDIGITS);
    std::memcpy(to, text.data(), GENERALWIDTH);
    return;
  }
  const Eight digits = digitsOf(r.digits);
  if (r.whole >= 0 && r.whole <= GENERALDIGITS) {
    putFixed(digits, r.whole, negative, to);
  } else {
    putScientific(digits, r.whole, negative, to);
  }
}

} // namespace lcp

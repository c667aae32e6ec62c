// Number fields of all files: integers, fixed, scientific and general form, as a Fortran formatted
// write makes them (Iw, Fw.d, Ew.d, Gw.d without scale factor).
//
// A number too wide for its field fills the field with asterisks, in general form also the four
// blanks behind a fixed part. A leading 0 goes when there is no room for it. Exponents of three
// digits drop the E. Negative zero keeps its sign. NaN and Infinity are written as words.
#pragma once

#include <string>

namespace lcp {

std::string integerField(long long value, int width);

// Fixed w.d: d decimals.
std::string fixedField(double value, int width, int decimals);

// Scientific w.d: mantissa below 1 with d digits, 0.1234E+01.
std::string scientificField(double value, int width, int digits);

// General w.d: d significant digits. A magnitude that rounds to 0.1 or more and below 10^d stands
// in fixed form in w - 4 columns with four blanks behind it, anything else in scientific form.
std::string generalField(double value, int width, int digits);

// Scientific with one digit before the point (1PEw.d), 1.234E+01, for console lines.
std::string pointedField(double value, int width, int decimals);

} // namespace lcp

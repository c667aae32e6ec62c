// Number fields of all files: integer, fixed, scientific and general form, equal to those of a
// Fortran formatted write (Iw, Fw.d, Ew.d, Gw.d without scale factor).
//
// A number too wide for its field fills the field with asterisks; in general form these include the
// four trailing blanks of a fixed number. A leading 0 is dropped when there is no room for it.
// Exponents of three digits drop the E. Negative zero keeps its sign. NaN and Infinity are written
// as words.
#pragma once

#include <string>

namespace lcp {

// Integer Iw, right-aligned.
std::string integerField(long long value, int width);

// Fixed form Fw.d with d decimals.
std::string fixedField(double value, int width, int decimals);

// Scientific form Ew.d: mantissa below 1 with d digits, 0.1234E+01.
std::string scientificField(double value, int width, int digits);

// General form Gw.d with d significant digits. A magnitude that rounds to at least 0.1 and below
// 10^d is written in fixed form in w - 4 columns, followed by four blanks; any other in scientific
// form.
std::string generalField(double value, int width, int digits);

// Scientific form with one digit before the point (1PEw.d), 1.234E+01, used on the console.
std::string pointedField(double value, int width, int decimals);

} // namespace lcp

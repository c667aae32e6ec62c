// A second writer of number fields (base/number_forms.h), based on exact decimals.
//
// A double is m 2^e, so its digits are those of m doubled e times or, for e < 0, of m times 5^-e
// with the point -e places from the end. They are rounded to nearest, ties to even.
//
// One edge is excluded: a Fortran write selects the form of a general field in floating point, so a
// value one rounding error below a power of ten can count as that power.
#pragma once

#include <string>

namespace lcp::test {

// Of finite values.
std::string exactFixed(double value, int width, int decimals);
std::string exactScientific(double value, int width, int digits);
std::string exactGeneral(double value, int width, int digits);
std::string exactPointed(double value, int width, int decimals);

} // namespace lcp::test

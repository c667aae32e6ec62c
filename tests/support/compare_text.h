// Compares a text written by the program with the expected text.
//
// Everything must be equal except the digits and signs of real numbers (digits with a point). Their
// points must be in the same columns with the same number of decimals, and the values may differ by
// the tolerance of their kind:
//   - lines of complex pairs "re,im" and nothing else: a matrix of consecutive lines of this kind,
//     each number relative to the largest in it;
//   - any other real number: relative to itself, or to the largest number of its line times the
//     tolerance `line`, where rounding noise occurs together with proper numbers (a vector that is
//     0 by symmetry).
// A difference of one unit in the last digit written passes, since two close values can round to
// neighbours. NaN never passes, not even against NaN.
//
// Lines of eigenvectors are compared less strictly, since their sign and the basis of equal modes
// are arbitrary and differ between linear algebra kernels: for lines with free signs only
// magnitudes are compared, for a free basis only the columns of the text. For lines of free width
// only the words are compared: their numbers are written with as many digits as they need.
#pragma once

#include <string>
#include <vector>

namespace lcp::test {

enum class Free { NOTHING, SIGNS, BASIS, WIDTH };

struct FreeLines {
  std::size_t first, last; // counted from 1
  Free what;
};

struct Tolerances {
  double matrix = 0.0;
  double scalar = 0.0;
  double line = 0.0;
  std::vector<FreeLines> free = {};
};

// Empty if the texts agree, else the first line that differs.
std::string textDifferences(const std::string& expected, const std::string& actual,
                            const Tolerances& t);

} // namespace lcp::test

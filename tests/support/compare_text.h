// Compares a text that the program wrote with the text that is expected.
//
// Words, blanks, integers, columns and the number of lines must be the same. A real number (it has
// a point) must stand in the same columns with the same digits before and behind the point; its
// value may differ by the tolerance of its kind:
//   - lines of complex pairs "re,im" and nothing else: a matrix over the consecutive lines of the
//     kind, each element relative to the largest magnitude in it;
//   - a complex pair in another line: relative to its magnitude;
//   - any other real number: relative to itself.
// Where rounding noise stands beside proper numbers (a vector that is 0 by symmetry), a number out
// of a matrix may also differ by the tolerance `line` times the largest number of its line.
// A difference of one unit in the last digit written passes where the tolerance is not 0, since
// two values however close can round to neighbours. NaN never passes, not even against NaN.
#pragma once

#include <string>
#include <string_view>

namespace lcp::test {

struct Tolerances {
  double matrix = 0.0;
  double scalar = 0.0;
  double line = 0.0;
};

// Lines "matrix 1e-9", "scalar 1e-9" and, where it is needed, "line 1e-12". False when a line is
// anything else or one of the first two is missing.
bool readTolerances(std::string_view text, Tolerances& t);

// Empty when the texts agree, else the first differences, each with its line number.
std::string textDifferences(std::string_view expected, std::string_view actual,
                            const Tolerances& t);

} // namespace lcp::test

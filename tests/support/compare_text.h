// Compares a text that the program wrote with the text that is expected.
//
// All must be the same but the digits and signs of the real numbers (digits behind a point). Their
// points must stand in the same columns with as many digits behind them, and the values may differ
// by the tolerance of their kind:
//   - lines of complex pairs "re,im" and nothing else: a matrix over the consecutive lines of the
//     kind, each number relative to the largest in it;
//   - any other real number: relative to itself, or by the tolerance `line` times the largest
//     number of its line, where rounding noise stands beside proper numbers (a vector that is 0 by
//     symmetry).
// A difference of one unit in the last digit written passes, since two values however close can
// round to neighbours. NaN never passes, not even against NaN.
//
// Lines of eigenvectors are looser, since their sign and the basis of equal modes are free and
// differ between kernels of linear algebra: of lines with free signs the magnitudes count, of a
// free basis the columns of the text alone. Of lines of free width the words count alone: their
// numbers are written with as many digits as they need.
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

// Empty when the texts agree, else the first line that differs.
std::string textDifferences(const std::string& expected, const std::string& actual,
                            const Tolerances& t);

} // namespace lcp::test

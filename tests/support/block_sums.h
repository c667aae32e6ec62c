// Long blocks of numbers in expected texts.
//
// Of a run of lines that hold as many numbers in as many columns, and nothing else, an expected
// text may keep the first two and the last one. In place of the others stands
//
//     @@ 96 lines, sum 1234.56781
//
// the sum of w asinh(x / s) over their numbers x. The scale s makes a number count by what it may
// differ (compare_text.h): in a matrix against the largest number of the block, else against
// itself, down to line / scalar of the largest number of its column. The weights w, from 1 to 2,
// tell two exchanged numbers. The sum may be off by the tolerances of two numbers, so it holds over
// every sound linear algebra and not with one number that is wrong.
//
// In place of lines that another case holds stands
//
//     @@ 61 lines, not read
#pragma once

#include "support/compare_text.h"

#include <string>

namespace lcp::test {

// The text with its long blocks cut, but for lines that are free. Where the text before it left
// lines unread, those and no others are left out again.
std::string blocksCut(const std::string& text, const std::string& before, const Tolerances& t);

// The expected text with the lines of the actual one in place of its sums; `wrong` says which sum
// does not fit, and stays empty otherwise.
std::string blocksFilled(const std::string& expected, const std::string& actual,
                         const Tolerances& t, std::string& wrong);

} // namespace lcp::test

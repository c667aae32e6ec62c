#include "support/compare_text.h"

#include <gtest/gtest.h>

using namespace lcp::test;

TEST(CompareText, TellsCloseFromApart) {
  const Tolerances fine{1e-9, 1e-9, 0.0}, coarse{1e-3, 1e-3, 0.0}, noise{1e-9, 1e-9, 1e-12};
  const Tolerances turned{
      1e-9, 1e-9, 0.0, {{1, 1, Free::SIGNS}, {2, 2, Free::BASIS}, {3, 4, Free::WIDTH}}};
  const std::string row = "  0.100000E+04,0.200000E+01  0.300000E-03,-.400000E-03\n";
  const std::string moved = "  0.100090E+04,0.200000E+01  0.300000E-03,0.900000E+00\n";
  const std::string small = "  0.100000E-03,0.000000E+00\n", other = "  0.2" + small.substr(5);
  const struct {
    std::string expected, actual;
    Tolerances t;
    bool same;
  } cases[] = {
      {"a\n", "a", coarse, false}, // words, columns and lines are exact
      {"a\n", "a \n", coarse, false},
      {"Row -1\n", "Row  1\n", coarse, false},
      {" 0.5000E+00\n", " 5.000E-01\n", coarse, false},
      {" 0.5,  0.5\n", " 0.5   0.5\n", coarse, false},
      {"R = 0.100000000000E+01", "R = 0.999999999990E+00", fine, true},
      {"R = 0.500E+00", "R = 0.501E+00", fine, true}, // the last digit
      {"R = -.500E+00", "R = -.502E+00", fine, false},
      {"R = 0.500E+00 X = 0.500E+09", "R = 0.600E+00 X = 0.500E+09", fine, false},
      {"  607.546    -0.2355E-15", "  607.546     0.7000E-16", fine, false},
      {"  607.546    -0.2355E-15", "  607.546     0.7000E-16", noise, true},
      {"  607.546    -0.2355E-15", "  607.546     0.7000E-08", noise, false},
      {row, moved, coarse, true}, // a matrix is measured by its largest number
      {row, moved, fine, false},
      {row + small, row + other, coarse, true},
      {row + "\n" + small, row + "\n" + other, coarse, false}, // and ends where its lines end
      {"  NaN", "  NaN", coarse, false},
      {"v 1.2.30-.40", "v 1.2.30-.40", fine, true}, // where numbers touch
      {"v 1.2.30-.40", "v 1.2.30-.42", fine, false},
      {"1.5E-3.", "1.5E-4.", fine, false}, // an exponent counts, without a sign it is a word
      {"1.5E3", "1.5E4", fine, false},
      {" 0.50,-.20\n 0.50,-.20\n", " -.50,0.20\n 0.70,0.00\n", turned, true},
      {" 0.50,-.20\n 0.50,-.20\n", " -.50,0.30\n 0.50,-.20\n", turned, false},
      {"\n\n 0.5\n", "\n\n 6e-05\n", turned, true},
      {"\n\n a-1.e 2E+5\n", "\n\n a3.e 0.5\n", turned, true},
      {"\n\n a-1.e\n", "\n\n a-.e\n", turned, false},
      {"\n\n 0.5\n", "\n\n nan\n", turned, false},
      {" 0.5\n NaN", " 0.5\n NaN", turned, false},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(textDifferences(c.expected, c.actual, c.t).empty(), c.same) << c.expected << '\n'
                                                                          << c.actual;
  }
}

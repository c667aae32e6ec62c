#include "support/compare_text.h"

#include "support/child.h"

#include <gtest/gtest.h>

using namespace lcp::test;

namespace {

constexpr Tolerances FINE{1e-9, 1e-9};
constexpr Tolerances COARSE{1e-3, 1e-3};
constexpr Tolerances EXACT{0.0, 0.0};

bool same(std::string_view a, std::string_view b, const Tolerances& t = FINE) {
  return textDifferences(a, b, t).empty();
}

struct Pair {
  const char* expected;
  const char* actual;
};

} // namespace

TEST(CompareText, WordsColumnsAndLinesAreExact) {
  for (const char* text :
       {"", "\n", "a\n", " ZM  (1) = 0.123456789E+00 ohm\n\n  7 nodes", "a\r\n"}) {
    EXPECT_TRUE(same(text, text)) << text;
    EXPECT_TRUE(same(text, text, EXACT)) << text;
  }
  const Pair differ[] = {
      {"a\n", "a"},                                  // a line end that is missing
      {"a\n", "a\n\n"},                              // a line too many
      {"a\nb\n", "b\na\n"},                          //
      {"a\n", "a \n"},                               // a blank behind
      {" a\n", "  a\n"},                             //
      {"Row  1\n", "Row  2\n"},                      // integers are exact
      {"Row  1\n", "Row 1\n"},                       //
      {"Row -1\n", "Row  1\n"},                      //
      {" 0.5000E+00\n", "  0.5000E+00\n"},           // a number one column off
      {" 0.5000E+00\n", " 0.50000E+00\n"},           // more digits
      {" 0.5000E+00\n", " 5.000E-01\n"},             // another form of the same value
      {" 0.5000    \n", " 0.5000\n"},                //
      {" 10.000    \n", "  10.000   \n"},            //
      {" 0.5000E+00\n", " **********\n"},            //
      {" 0.5000E+00 ohm\n", " 0.5000E+00 mho\n"},    //
      {" 0.5,  0.5\n", " 0.5   0.5\n"},              //
      {"Build: 2022.10.28\n", "Build: 2022.10.29\n"} // no number, though it has points
  };
  for (const Pair& p : differ) {
    EXPECT_FALSE(same(p.expected, p.actual, {0.5, 0.5})) << p.expected << p.actual;
    EXPECT_FALSE(same(p.actual, p.expected, {0.5, 0.5})) << p.actual << p.expected;
  }
}

TEST(CompareText, ScalarsAreRelativeToThemselves) {
  const Pair close[] = {
      {"R = 0.100000000000E-05", "R = 0.100000000090E-05"}, //
      {"R = 0.100000000000E+01", "R = 0.999999999990E+00"}, // the sign of the exponent may turn
      {"R = 0.500E+00", "R = 0.501E+00"},                   // the last digit
      {"R = -.500E+00", "R = -.501E+00"},                   //
      {"0.500-100", "0.501-100"},                           // exponents of three digits
      {"1000.5000    ", "1000.5001    "},                   //
      {"-.500E+00-.500E+00", "-.500E+00-.501E+00"},         // fields that touch
  };
  const Pair apart[] = {
      {"R = 0.100000000000E-05", "R = 0.100000000200E-05"},
      {"R = 0.500E+00", "R = 0.502E+00"},
      {"R = -.500E+00", "R = 0.500E+00"}, // same columns, other sign
      {"-.500E+00-.500E+00", "-.500E+000.500E+00"},
      {"R = 0.000E+00", "R = 0.100E-01"},
      {"0.500-100", "0.500-101"},
      {"0.500-100", "0.500+100"},
      {"1000.5000    ", "1000.5003    "},
      {"R = 0.500E+00 X = 0.500E+09", "R = 0.600E+00 X = 0.500E+09"}, // no help from a neighbour
      {"  0.500E+00\n  0.500E+09", "  0.600E+00\n  0.500E+09"},
  };
  for (const Pair& p : close) {
    EXPECT_TRUE(same(p.expected, p.actual)) << p.expected << "\n" << p.actual;
    EXPECT_FALSE(same(p.expected, p.actual, EXACT)) << p.expected << "\n" << p.actual;
  }
  for (const Pair& p : apart) EXPECT_FALSE(same(p.expected, p.actual)) << p.expected << p.actual;
  EXPECT_TRUE(same("0.50000E+00", "0.50050E+00", {0.0, 1e-3}));
  EXPECT_FALSE(same("0.50000E+00", "0.50051E+00", {1.0, 1e-3})); // the tolerance of its own kind
}

TEST(CompareText, NoiseBesideProperNumbers) {
  const char* expected = "  607.546    -0.2355E-15     0.7071    ";
  const char* actual = "  607.546     0.7000E-16     0.7071    ";
  EXPECT_FALSE(same(expected, actual));
  EXPECT_TRUE(same(expected, actual, {1e-9, 1e-9, 1e-12}));
  EXPECT_FALSE(same(expected, "  607.546     0.7000E-08     0.7071    ", {1e-9, 1e-9, 1e-12}));
  EXPECT_FALSE(same(expected, "  607.546    -0.2355E-15     0.7073    ", {1e-9, 1e-9, 1e-12}));
  EXPECT_FALSE(same("  607.546\n 0.2355E-15", "  607.546\n 0.7000E-16", {1e-9, 1e-9, 1e-12}));
  EXPECT_FALSE(same("  0.607E+00,0.200E-15", "  0.607E+00,0.400E-14", {1e-15, 1e-15, 1.0}));
}

TEST(CompareText, MatrixElementsAreRelativeToTheLargest) {
  const std::string head = "Z:\n";
  const std::string row1 = "    0.100000E+04,0.200000E+01   0.300000E-03,-.400000E-03\n";
  const std::string row2 = "    0.100000E+04,0.200000E+01   0.300000E-03,0.400000E-03\n";
  const auto changed = [](std::string row, std::string_view from, std::string_view to) {
    return row.replace(row.find(from), from.size(), to);
  };
  // 1e-3 of 1000 is 1: small elements may move, also through zero; their own size is no measure.
  EXPECT_TRUE(same(head + row1 + row2, head + row2 + row1, COARSE));
  EXPECT_TRUE(same(head + row1, head + changed(row1, "0.300000E-03", "-.900000E+00"), COARSE));
  EXPECT_FALSE(same(head + row1, head + changed(row1, "0.300000E-03", "0.110000E+01"), COARSE));
  EXPECT_FALSE(same(head + row1, head + changed(row1, "0.100000E+04", "0.101000E+04"), COARSE));
  EXPECT_TRUE(same(head + row1, head + changed(row1, "0.100000E+04", "0.100090E+04"), COARSE));
  EXPECT_FALSE(same(head + row1, head + changed(row1, "0.300000E-03", "0.900000E-03"), FINE));
  // The matrix ends where its lines end: the next one is measured by itself.
  const std::string small = "    0.100000E-03,0.000000E+00\n";
  const std::string other = "    0.200000E-03,0.000000E+00\n";
  EXPECT_TRUE(same(row1 + small, row1 + other, COARSE));
  EXPECT_FALSE(same(row1 + "\n" + small, row1 + "\n" + other, COARSE));
  EXPECT_FALSE(same(small + "\n" + row1, other + "\n" + row1, COARSE));
  EXPECT_FALSE(same(row1 + "Y:\n" + small, row1 + "Y:\n" + other, COARSE));
  // A pair beside words is a number of its own, measured by its magnitude.
  EXPECT_TRUE(same("(0.100000E+04,0.000000E+00) pole", "(0.100000E+04,0.900000E+00) pole", COARSE));
  EXPECT_FALSE(
      same("(0.100000E+04,0.000000E+00) pole", "(0.100000E+04,0.110000E+01) pole", COARSE));
  EXPECT_FALSE(same("(0.100000E+04,0.000000E+00)\n(0.100000E-03,0.000000E+00)",
                    "(0.100000E+04,0.000000E+00)\n(0.200000E-03,0.000000E+00)", COARSE));
}

TEST(CompareText, NaNNeverPasses) {
  for (const char* text : {"  NaN", "R = -nan V", "    0.500E+00,      NaN\n", "(nan,1.5)"}) {
    EXPECT_FALSE(same(text, text)) << text;
  }
  EXPECT_FALSE(same("    0.500E+00,0.500E+00", "    0.500E+00,      NaN", {1e9, 1e9}));
  EXPECT_FALSE(same("    0.500E+00,0.500E+00", "    0.500E+00, Infinity", {1e9, 1e9}));
  EXPECT_TRUE(same("finance\nNaNny", "finance\nNaNny"));
}

TEST(CompareText, ShowsWhereAndWhat) {
  EXPECT_EQ(textDifferences("a\nR = 0.500\nc\n", "a\nR = 0.600\n", FINE),
            lines({"line 2: number at column 5", "  wrote    |R = 0.600|", "  expected |R = 0.500|",
                   "line 3: text or columns", "  wrote    ||", "  expected |c|",
                   "2 line ends, expected 3", "  first missing: ||"}));
  std::string many;
  for (int i = 0; i < 1000; ++i) many += "a\n";
  const std::string report = textDifferences(many, std::string(many.size() / 2, '\n'), FINE);
  EXPECT_LT(report.size(), 1000U);
  EXPECT_NE(report.find("and 990 more lines"), std::string::npos) << report;
}

TEST(CompareText, Tolerances) {
  Tolerances t;
  ASSERT_TRUE(readTolerances("matrix 1e-9\nscalar 0\n", t));
  EXPECT_EQ(t.matrix, 1e-9);
  EXPECT_EQ(t.scalar, 0.0);
  EXPECT_EQ(t.line, 0.0);
  ASSERT_TRUE(readTolerances("matrix 0\nline 1e-12\nscalar 1e-9", t));
  EXPECT_EQ(t.line, 1e-12);
  for (const char* wrong :
       {"", "matrix 1e-9\n", "scalar 1e-9\n", "line 1e-9\n", "matrix\nscalar 1\n",
        "matrix 1 1\nscalar 1\n", "matrix 1\nscalar 1\npole 1\n", "matrix -1\nscalar 1\n",
        "matrix nan\nscalar 1\n"}) {
    EXPECT_FALSE(readTolerances(wrong, t)) << wrong;
  }
}

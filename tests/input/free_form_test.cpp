#include "input/free_form.h"

#include <array>
#include <gtest/gtest.h>

using namespace lcp;

TEST(FreeForm, ReadsTheFirstRealOfAField) {
  struct Case {
    const char* field;
    Got got;
    double value;
  };
  constexpr double OLD = -7;
  const Case cases[] = {
      {"12.5", Got::Value, 12.5},
      {"  12.5 m", Got::Value, 12.5},
      {"1,2", Got::Value, 1},
      {"1D3", Got::Value, 1000},
      {"1.5d+2", Got::Value, 150},
      {"1+3", Got::Value, 1000},
      {"-.5E-1", Got::Value, -0.05},
      {"5.", Got::Value, 5},
      {"3/4", Got::Value, 3},
      {"2*9", Got::Value, 9},
      {"\t7", Got::Value, 7},
      {"'4'", Got::Value, 4},
      {"", Got::None, OLD},
      {"   ", Got::None, OLD},
      {"/ 5", Got::None, OLD},
      {", 5", Got::None, OLD},
      {"abc", Got::Malformed, OLD},
      {"1.2.3", Got::Malformed, OLD},
      {"nan", Got::Malformed, OLD},
      {"inf", Got::Malformed, OLD},
      {"1e400", Got::Malformed, OLD},
      {"1e", Got::Malformed, OLD},
      {".", Got::Malformed, OLD},
      {"-", Got::Malformed, OLD},
      {"0x10", Got::Malformed, OLD},
      {"12m", Got::Malformed, OLD},
      {"'4", Got::Malformed, OLD},
      {"0*5", Got::Malformed, OLD},
      {"99999999999*5", Got::Malformed, OLD},
  };
  for (const Case& c : cases) {
    double value = OLD;
    EXPECT_EQ(readReal(c.field, value), c.got) << c.field;
    EXPECT_EQ(value, c.value) << c.field;
  }
}

TEST(FreeForm, ReadsTheFirstIntegerOfAField) {
  struct Case {
    const char* field;
    Got got;
    int value;
  };
  const Case cases[] = {
      {"42 rest", Got::Value, 42},
      {"+3", Got::Value, 3},
      {"-2147483648", Got::Value, -2147483647 - 1},
      {"2147483648", Got::Malformed, -7},
      {"1.0", Got::Malformed, -7},
      {"1e3", Got::Malformed, -7},
      {"+-3", Got::Malformed, -7},
      {"", Got::None, -7},
  };
  for (const Case& c : cases) {
    int value = -7;
    EXPECT_EQ(readInteger(c.field, value), c.got) << c.field;
    EXPECT_EQ(value, c.value) << c.field;
  }
}

TEST(FreeForm, ReadsWordsAndQuotedTexts) {
  struct Case {
    const char* field;
    Got got;
    const char* word;
  };
  const Case cases[] = {
      {"My Line", Got::Value, "My"},      {"'My Line' x", Got::Value, "My Line"},
      {"\"a,b/c\"", Got::Value, "a,b/c"}, {"'it''s'", Got::Value, "it's"},
      {"a/b", Got::Value, "a"},           {"/a", Got::None, "old"},
      {"'open", Got::Malformed, "old"},   {"", Got::None, "old"},
  };
  for (const Case& c : cases) {
    std::string word = "old";
    EXPECT_EQ(readWord(c.field, word), c.got) << c.field;
    EXPECT_EQ(word, c.word) << c.field;
  }
}

TEST(FreeForm, ListsLeaveWhatIsMissingUnchanged) {
  const auto read = [](const char* field) {
    std::array<double, 4> t = {-1, -2, -3, -4};
    EXPECT_TRUE(readReals(field, t)) << field;
    return t;
  };
  using A = std::array<double, 4>;
  EXPECT_EQ(read("1 2"), (A{1, 2, -3, -4}));
  EXPECT_EQ(read("1,,3"), (A{1, -2, 3, -4}));
  EXPECT_EQ(read("1 , 2 / 3 4"), (A{1, 2, -3, -4}));
  EXPECT_EQ(read(",2"), (A{-1, 2, -3, -4}));
  EXPECT_EQ(read("2*5 2*"), (A{5, 5, -3, -4}));
  EXPECT_EQ(read("9*8"), (A{8, 8, 8, 8}));
  EXPECT_EQ(read("1 2 3 4 words"), (A{1, 2, 3, 4}));
  std::array<double, 4> t{};
  EXPECT_FALSE(readReals("1 2 words", t));
}

TEST(FreeForm, AListOfRealsMayRunOverRecords) {
  std::array<double, 5> t{};
  RealList list(t);
  EXPECT_FALSE(list.started());
  EXPECT_TRUE(list.feed(""));
  EXPECT_FALSE(list.started());
  EXPECT_TRUE(list.feed("1 2,"));
  EXPECT_TRUE(list.feed("3 2*4 5"));
  EXPECT_TRUE(list.complete());
  EXPECT_EQ(t, (std::array<double, 5>{1, 2, 3, 4, 4}));
  std::array<double, 5> u{};
  RealList shortList(u);
  EXPECT_TRUE(shortList.feed("1 /"));
  EXPECT_TRUE(shortList.complete());
}

#include "input/free_form.h"

#include <array>
#include <gtest/gtest.h>
#include <vector>

using namespace lcp;

namespace {

template <class T> using Fields = std::vector<std::pair<const char*, T>>;
template <class T> using Read = Got (*)(std::string_view, T&);

// How each field is read into a target that held `old`.
template <class T>
void check(T old, Read<T> read, const Fields<T>& good, const std::vector<const char*>& none,
           const std::vector<const char*>& malformed) {
  const auto expect = [&](const char* text, Got got, const T& wanted) {
    T value = old;
    EXPECT_EQ(read(text, value), got) << text;
    EXPECT_EQ(value, wanted) << text;
  };
  for (const auto& [text, value] : good) expect(text, Got::Value, value);
  for (const char* text : none) expect(text, Got::None, old);
  for (const char* text : malformed) expect(text, Got::Malformed, old);
}

} // namespace

TEST(FreeForm, ReadsTheFirstItemOfAField) {
  const Fields<double> reals = {
      {"  12.5 m", 12.5}, {"1,2", 1}, {"1D3", 1000}, {"1.5d+2", 150}, {"1+3", 1000},
      {"-.5E-1", -0.05},  {"5.", 5},  {"3/4", 3},    {"2*9", 9},      {"\t7", 7}};
  check(-7.0, readReal, reals, {"", "   ", "/ 5", ", 5"},
        {"abc", "1.2.3", "nan", "inf", "1e400", "1e", ".", "-", "0x10", "12m", "'4", "'4'", "\"4\"",
         "0*5", "99999999999*5"});
  check(-7, readInteger, {{"42 rest", 42}, {"+3", 3}, {"-2147483648", -2147483647 - 1}}, {""},
        {"2147483648", "1.0", "1e3", "+-3", "'4'"});
  const Fields<std::string> words = {{"My Line", "My"},
                                     {"'My Line' x", "My Line"},
                                     {"\"a,b/c\"", "a,b/c"},
                                     {"'it''s'", "it's"},
                                     {"a/b", "a"}};
  check<std::string>("old", readWord, words, {"/a", ""}, {"'open"});
}

TEST(FreeForm, ListsLeaveWhatIsMissingUnchanged) {
  using Four = std::array<double, 4>;
  const std::pair<const char*, Four> cases[] = {
      {"1 2", {1, 2, -3, -4}}, {"1,,3", {1, -2, 3, -4}},   {"1 , 2 / 3 4", {1, 2, -3, -4}},
      {",2", {-1, 2, -3, -4}}, {"2*5 2*", {5, 5, -3, -4}}, {"1 2 3 4 words", {1, 2, 3, 4}},
      {"9*8", {8, 8, 8, 8}}};
  for (const auto& [field, expected] : cases) {
    Four t = {-1, -2, -3, -4};
    EXPECT_TRUE(readReals(field, t)) << field;
    EXPECT_EQ(t, expected) << field;
  }
  Four t{};
  for (const char* malformed : {"1 2 words", "1 '2'"}) EXPECT_FALSE(readReals(malformed, t));
}

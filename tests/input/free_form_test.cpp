#include "input/free_form.h"

#include <array>
#include <gtest/gtest.h>
#include <vector>

using namespace lcp;

namespace {

template <class T> struct Field {
  const char* text;
  T value;
};

template <class T> using Read = Got (*)(std::string_view, T&);

// How each field is read into a target that held `old`.
template <class T>
void check(T old, Read<T> read, const std::vector<Field<T>>& good,
           const std::vector<const char*>& none, const std::vector<const char*>& malformed) {
  std::vector<std::pair<Field<T>, Got>> all;
  for (const Field<T>& field : good) all.push_back({field, Got::Value});
  for (const char* text : none) all.push_back({{text, old}, Got::None});
  for (const char* text : malformed) all.push_back({{text, old}, Got::Malformed});
  for (const auto& [field, got] : all) {
    T value = old;
    EXPECT_EQ(read(field.text, value), got) << field.text;
    EXPECT_EQ(value, field.value) << field.text;
  }
}

} // namespace

TEST(FreeForm, ReadsTheFirstItemOfAField) {
  const std::vector<Field<double>> reals = {
      {"  12.5 m", 12.5}, {"1,2", 1}, {"1D3", 1000}, {"1.5d+2", 150}, {"1+3", 1000},
      {"-.5E-1", -0.05},  {"5.", 5},  {"3/4", 3},    {"2*9", 9},      {"\t7", 7}};
  check(-7.0, readReal, reals, {"", "   ", "/ 5", ", 5"},
        {"abc", "1.2.3", "nan", "inf", "1e400", "1e", ".", "-", "0x10", "12m", "'4", "'4'", "\"4\"",
         "0*5", "99999999999*5"});
  check(-7, readInteger, {{"42 rest", 42}, {"+3", 3}, {"-2147483648", -2147483647 - 1}}, {""},
        {"2147483648", "1.0", "1e3", "+-3", "'4'"});
  const std::vector<Field<std::string>> words = {{"My Line", "My"},
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

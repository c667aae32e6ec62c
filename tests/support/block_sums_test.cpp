#include "support/block_sums.h"

#include "support/child.h"

#include <cmath>
#include <fmt/format.h>
#include <gtest/gtest.h>

using namespace lcp::test;

namespace {

// Why a text is not what the cut one expects; empty when it is.
std::string difference(const std::string& cut, const std::string& text, const Tolerances& t) {
  std::string wrong;
  const std::string filled = blocksFilled(cut, text, t, wrong);
  return wrong.empty() ? textDifferences(filled, text, t) : wrong;
}

std::string joined(const std::vector<std::string>& all) {
  std::string text;
  for (const std::string& line : all) text += line + "\n";
  return text;
}

} // namespace

TEST(BlockSums, TellOneWrongNumber) {
  const Tolerances t{.matrix = 1e-6, .scalar = 1e-4, .line = 1e-12};
  for (const bool matrix : {false, true}) {
    const auto row = [&](int i, double factor) { // a matrix of one size, columns of seven decades
      const double size = matrix ? 10 + i % 7 : std::pow(2.0, i), other = matrix ? 30 : 3e5;
      return fmt::format("{0:15.8E}{4}{1:15.8E} {2:15.8E}{4}{3:15.8E}", size * factor,
                         -0.3 * size * factor, other + i, 0.5 * size, matrix ? ',' : ' ');
    };
    std::vector<std::string> lines{"A head"};
    for (int i = 0; i < 24; ++i) lines.push_back(row(i, 1));
    const std::string cut = blocksCut(joined(lines), "", t);
    EXPECT_EQ(splitLines(cut).size(), 5U) << cut;
    EXPECT_EQ(difference(cut, joined(lines), t), "");
    for (std::size_t at = 3; at < 24; ++at) {
      const auto changed = [&](const std::string& text) {
        auto other = lines;
        other[at] = text;
        return difference(cut, joined(other), t);
      };
      const int i = static_cast<int>(at) - 1;
      EXPECT_EQ(changed(row(i, 1 + 1e-7)), "") << at;
      EXPECT_NE(changed(row(i, 1 + 1e-3)), "") << at;
      EXPECT_NE(changed(row(i, -1)), "") << at;
      EXPECT_NE(changed(row(i + 1, 1)), "") << at;
      EXPECT_NE(changed(lines[at] + " "), "") << at;
      std::string nan = lines[at];
      EXPECT_NE(changed(nan.replace(12, 3, "NaN")), "") << at;
      auto exchanged = lines;
      std::swap(exchanged[at - 1], exchanged[at]);
      EXPECT_NE(difference(cut, joined(exchanged), t), "") << at;
    }
    lines.erase(lines.begin() + 9);
    EXPECT_NE(difference(cut, joined(lines), t), "");
  }
}

TEST(BlockSums, LeaveWhatIsShortFreeOrNoNumbers) {
  const std::string nine = " 0.1\n 0.2\n 0.3\n-0.4\n 0.5\n 0.6\n 0.7\n 0.8\n 0.9\n",
                    ten = nine + " 0.1\n";
  const Tolerances t{1e-9, 1e-9, 1e-12}, freed{1e-9, 1e-9, 1e-12, {{3, 3, Free::SIGNS}}};
  for (const std::string& text :
       {nine, nine + " 0.60\n", nine + " x.6\n", nine + "\n" + nine, std::string("\n\n")})
    EXPECT_EQ(blocksCut(text, "", t), text);
  EXPECT_EQ(blocksCut(ten, "", freed), ten);
  EXPECT_NE(blocksCut(ten, "", t), ten);
  EXPECT_NE(difference(blocksCut(ten, "", t), " 0.1\n 0.2\n", t), "");
}

TEST(BlockSums, LinesThatAreNotReadStayOut) {
  const Tolerances t{1e-9, 1e-9, 1e-12};
  const std::string text = "a\nb\nc\nd\ne\n", cut = "@@ 3 lines, not read\nd\ne\n";
  EXPECT_EQ(blocksCut(text, cut, t), cut);
  EXPECT_EQ(blocksCut(text + "f\n", cut, t), cut + "f\n");
  EXPECT_EQ(difference(cut, text, t), "");
  EXPECT_EQ(difference(cut, "a\nx\ny\nd\ne\n", t), "");
  for (const char* other : {"a\nb\nc\nx\ne\n", "a\nb\nd\ne\n", "a\nb\n"})
    EXPECT_NE(difference(cut, other, t), "") << other;
}

// Every case under tests/cases/ is a run of the program and a test of its own.
#include "support/whole_run.h"

#include <cstdlib>
#include <gtest/gtest.h>

using namespace lcp::test;

namespace {

constexpr const char* CASES = CORVO_TEST_DATA "/cases";

class WholeRun : public testing::TestWithParam<std::filesystem::path> {};

std::string nameOf(const testing::TestParamInfo<std::filesystem::path>& info) {
  std::string name = info.param.filename().string();
  for (char& c : name) {
    if (std::isalnum(static_cast<unsigned char>(c)) == 0) c = '_';
  }
  return name;
}

} // namespace

TEST_P(WholeRun, IsAsExpected) {
  if (std::getenv("CORVO_REWRITE_SNAPSHOTS") != nullptr) {
    const std::string against = rewriteCase(GetParam(), CORVO_PROGRAM);
    if (against.empty()) return;
    ASSERT_EQ(against, "not a snapshot\n") << GetParam();
  }
  EXPECT_EQ(caseDifferences(GetParam(), CORVO_PROGRAM), "") << GetParam();
}

GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(WholeRun);
INSTANTIATE_TEST_SUITE_P(Cases, WholeRun, testing::ValuesIn(casesUnder(CASES)), nameOf);

TEST(WholeRuns, AreFoundWhereTheyStand) {
  EXPECT_NE(std::filesystem::exists(CASES), casesUnder(CASES).empty());
}

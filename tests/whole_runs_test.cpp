// Every directory under tests/cases/ is a run of the program.
#include "support/whole_run.h"

#include <cstdlib>
#include <gtest/gtest.h>

using namespace lcp::test;

TEST(WholeRuns, AreAsExpected) {
  int cases = 0;
  for (const auto& entry : std::filesystem::directory_iterator(CORVO_TEST_DATA "/cases")) {
    ++cases;
    if (std::getenv("CORVO_REWRITE_SNAPSHOTS") != nullptr && rewriteCase(entry.path())) continue;
    EXPECT_EQ(caseDifferences(entry.path()), "") << entry.path();
  }
  EXPECT_GT(cases, 0);
}

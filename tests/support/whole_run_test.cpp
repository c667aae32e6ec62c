// What the runner of whole runs tells of a case that is changed in one of its parts.
#include "support/whole_run.h"

#include "support/scratch.h"

#include <gtest/gtest.h>

using namespace lcp::test;

TEST(WholeRunCase, EachPartCanFail) {
  const struct {
    const char *file, *text, *told;
  } changes[] = {
      {"source", "made by hand for this test\n", ""},
      {"source", "", "no source of the expected numbers\n"},
      {"status", "3\n", "status: line 1: |0|, expected |3|\n"},
      {"console", "runs\n", "console: line 1: |Line"},
      {"expected/pair.out", "\n", "pair.out: "},
      {"expected/sub/b.out", "more\n", "sub/b.out: was not written\n"},
      {"arguments", "/file\npair.cvi\n/length\n40001\n", "pair.out: line 17: "},
      {"arguments", "/file\n", "pair.cvo: was not written\n"},
      {"arguments", "/file\npair.cvi\n/length\n4e4\n/steps\n2\n", "pair_002.out: was written\n"},
  };
  for (const auto& change : changes) {
    const Scratch scratch;
    std::filesystem::copy(CORVO_TEST_DATA "/cases/manual_pair_totals", scratch.path(),
                          std::filesystem::copy_options::recursive);
    std::filesystem::create_directory(scratch.path() / "expected" / "sub");
    scratch.file(change.file, change.text);
    const std::string report = caseDifferences(scratch.path());
    EXPECT_NE(report.find(change.told), std::string::npos) << change.file << ": " << report;
    EXPECT_EQ(report.empty(), *change.told == '\0') << change.file << ": " << report;
  }
}

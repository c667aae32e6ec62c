// What the runner of whole runs itself does, on a shell in the place of the program.
#include "support/whole_run.h"

#include "support/scratch.h"

#include <gtest/gtest.h>

using namespace lcp::test;

// A case that a shell runs: prints, reads its input file, writes two files, ends with 2.
TEST(WholeRunCase, EachPartCanFail) {
  const struct {
    const char *file, *text, *told;
  } changes[] = {
      {"source", "made by hand for this test\n", ""},
      {"source", "", "no source of the expected numbers\n"},
      {"status", "0\n", "status: line 1: |2|, expected |0|\n"},
      {"console", "runs\n", "console: line 1: |running|, expected |runs|\n"},
      {"expected/a.out", "1.500002\n", "a.out: line 1: |1.500000|, expected |1.500002|\n"},
      {"expected/sub/b.out", "dee\n", "sub/b.out: line 1: |deep|, expected |dee|\n"},
      {"expected/c.out", "more\n", "c.out was not written\n"},
      {"tolerance", "matrix 1\nscalar 1e-9\n", ""},
      {"input.sh", "kill -11 $$\n", "a.out was not written\n"},
      {"input.sh", "echo x > x\n", "x was written\n"},
  };
  for (const auto& change : changes) {
    const Scratch scratch;
    scratch.file("input.txt", "1.500000\n");
    scratch.file("arguments", "input.sh\n");
    scratch.file("input.sh", "echo running >&2\nmkdir sub\ncat input.txt > a.out\n"
                             "echo deep > sub/b.out\nexit 2\n");
    scratch.file("console", "running\n");
    scratch.file("status", "2\n");
    scratch.file("tolerance", "matrix 1e-6\nscalar 1e-6\n");
    scratch.file("source", "made by hand for this test\n");
    std::filesystem::create_directories(scratch.path() / "expected" / "sub");
    scratch.file("expected/a.out", "1.500001\n");
    scratch.file("expected/sub/b.out", "deep\n");
    scratch.file(change.file, change.text);
    const std::string report = caseDifferences(scratch.path(), "/bin/sh");
    EXPECT_NE(report.find(change.told), std::string::npos) << change.file << ": " << report;
    EXPECT_EQ(report.empty(), *change.told == '\0') << change.file << ": " << report;
    EXPECT_FALSE(std::filesystem::exists(scratch.path() / "a.out")); // it ran elsewhere
  }
}

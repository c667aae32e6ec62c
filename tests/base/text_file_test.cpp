#include "base/text_file.h"

#include "base/console.h"
#include "base/stop.h"
#include "support/child.h"
#include "support/scratch.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

using namespace lcp;
using namespace lcp::test;

namespace {

void expectFailedWrite(const ChildResult& run, const std::string& name) {
  const std::string stars(43, '*');
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.console,
            lines({"", stars, "Corvo.exe: ERROR", "Error in Writing Output File: " + name, stars}));
}

// How a run ends that writes this many lines of eleven characters to a file and closes it.
ChildResult writeRun(const std::string& name, int count, rlim_t mostBytes = RLIM_INFINITY) {
  return runChild([&] {
    console::prepare();
    const rlimit limit{mostBytes, mostBytes};
    setrlimit(RLIMIT_FSIZE, &limit);
    TextFile file;
    if (!file.open(name)) stop(7);
    for (int i = 0; i < count; ++i) file.line("0123456789");
    file.close();
    stop(0);
  });
}

} // namespace

TEST(TextFile, WritesWhenClosedAndReplacesWhatStood) {
  const Scratch scratch;
  const std::string name = scratch.file("a.out", "an older and longer file\nof two lines\n");
  TextFile file;
  ASSERT_TRUE(file.open(name + "   "));
  EXPECT_EQ(contentOf(name), ""); // emptied at its point of the run
  file.line(Record(" ").integer(7, 3).column(8).fixed(0.5, 6, 2).blanks(1).text("V"));
  file.line(Record().scientific(2.5, 10, 3).general(2.5, 10, 3).column(3).text("/"));
  EXPECT_EQ(contentOf(name), "");
  file.close();
  EXPECT_EQ(contentOf(name), lines({"   7     0.50 V", " 0.250E+01  2.50    /"}));
  file.close(); // once closed, no more
  for (const std::string& bad : {std::string("   "), scratch.path().string(), name + "/",
                                 scratch.file("missing/a.out"), std::string(300, 'n')}) {
    EXPECT_FALSE(file.open(bad)) << bad;
    file.line("lost");
    file.close(); // no file, nothing to report
  }
}

TEST(TextFile, FailedWriteEndsTheRunWithAnEmptyFile) {
  const Scratch scratch;
  const std::string name = scratch.file("a.out");
  expectFailedWrite(writeRun(name, 100, 1000), name);
  EXPECT_EQ(contentOf(name), "");
  EXPECT_EQ(writeRun(name, 100, 1100).status, 0);
  EXPECT_EQ(contentOf(name).size(), 1100U);
  EXPECT_EQ(writeRun("/dev/full", 0).status, 0); // nothing to write, nothing lost
}

TEST(TextFile, FailedCloseAndEndOfTheRun) {
  const Scratch scratch;
  const std::string name = scratch.file("a.out");
  const auto run = [&](int count, bool closes) {
    return runChild([&] {
      const int descriptor = dup(STDOUT_FILENO); // the one that the next open will get
      close(descriptor);
      TextFile file;
      if (!file.open(name)) stop(7);
      for (int i = 0; i < count; ++i) file.line("text");
      if (!closes) stop(1); // nothing is written
      close(descriptor);
      file.close();
      stop(0);
    });
  };
  expectFailedWrite(run(0, true), name); // without text only the close can fail
  expectFailedWrite(run(1, true), name);
  EXPECT_EQ(run(100000, false).status, 1);
  EXPECT_EQ(contentOf(name), "");
}

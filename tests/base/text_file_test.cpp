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

// How a run ends that writes this many lines to a file and closes it.
ChildResult writeRun(const std::string& name, int count, const std::function<void()>& before) {
  return runChild([&] {
    console::prepare();
    before();
    TextFile file;
    if (!file.open(name)) stop(7);
    for (int i = 0; i < count; ++i) file.line("0123456789");
    file.close();
    stop(0);
  });
}

void expectFailedWrite(const ChildResult& run, const std::string& name) {
  const std::string stars(43, '*');
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.console,
            lines({"", stars, "Corvo.exe: ERROR", "Error in Writing Output File: " + name, stars}));
}

void limitFileSize(rlim_t bytes) {
  const rlimit limit{bytes, bytes};
  setrlimit(RLIMIT_FSIZE, &limit);
}

} // namespace

TEST(TextFile, WritesWhenClosedAndReplacesWhatStood) {
  const Scratch scratch;
  const std::string name = scratch.file("a.out", "an older and longer file\nof two lines\n");
  TextFile file;
  ASSERT_TRUE(file.open(name + "   "));
  EXPECT_EQ(contentOf(name), ""); // emptied at its point of the run
  file.line("one");
  file.line();
  file.line(Record(" ").integer(7, 3).column(8).fixed(0.5, 6, 2).blanks(1).text("V"));
  file.line(Record().scientific(2.5, 10, 3).general(2.5, 10, 3).column(3).text("/"));
  EXPECT_EQ(contentOf(name), "");
  file.close();
  EXPECT_EQ(contentOf(name), lines({"one", "", "   7     0.50 V", " 0.250E+01  2.50    /"}));
  file.close(); // once closed, no more
  ASSERT_TRUE(file.open(name));
  file.line("two");
  file.close();
  EXPECT_EQ(contentOf(name), "two\n");
}

TEST(TextFile, CannotBeOpened) {
  const Scratch scratch;
  for (const std::string& name :
       {std::string(), std::string("   "), scratch.path().string(), scratch.file("missing/a.out"),
        scratch.file("a.out/"), scratch.file(std::string(300, 'n'))}) {
    TextFile file;
    EXPECT_FALSE(file.open(name)) << name;
    file.line("lost");
    file.close(); // no file, nothing to report
  }
}

TEST(TextFile, FailedWriteEndsTheRunWithAnEmptyFile) {
  for (const int count : {1, 100000})
    expectFailedWrite(writeRun("/dev/full", count, [] {}), "/dev/full");
  EXPECT_EQ(writeRun("/dev/full", 0, [] {}).status, 0); // nothing to write, nothing lost
  const Scratch scratch;
  const std::string name = scratch.file("a.out");
  expectFailedWrite(writeRun(name, 100, [] { limitFileSize(1000); }), name);
  EXPECT_EQ(contentOf(name), "");
  EXPECT_EQ(writeRun(name, 100, [] { limitFileSize(1100); }).status, 0);
  EXPECT_EQ(contentOf(name).size(), 1100U);
}

TEST(TextFile, FailedCloseAndEndOfTheRun) {
  const Scratch scratch;
  const std::string name = scratch.file("a.out");
  for (const int count : {0, 1, 100000}) { // without text only the close can fail
    const ChildResult run = runChild([&] {
      const int descriptor = dup(STDOUT_FILENO); // the one that the next open will get
      close(descriptor);
      TextFile file;
      if (!file.open(name)) stop(7);
      for (int i = 0; i < count; ++i) file.line("text");
      if (count > 1) stop(1); // before the close: nothing is written
      close(descriptor);
      file.close();
      stop(0);
    });
    if (count <= 1) expectFailedWrite(run, name);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(contentOf(name), "");
  }
}

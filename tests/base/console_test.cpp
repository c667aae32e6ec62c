#include "base/console.h"

#include "base/stop.h"
#include "support/child.h"
#include "support/scratch.h"

#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

using namespace lcp;
using namespace lcp::test;

namespace {

void full() { dup2(open("/dev/full", O_WRONLY), STDOUT_FILENO); }

void closedPipe() {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  close(ends[0]);
  dup2(ends[1], STDOUT_FILENO);
}

void closed() { close(STDOUT_FILENO); }

void untouched() {}

// A run that prints so many lines and ends with the status given.
ChildResult runOf(void (*before)(), int printed, int status) {
  return runChild([&] {
    std::signal(SIGPIPE, SIG_DFL);
    before();
    console::prepare();
    for (int i = 0; i < printed; ++i) console::print("line {}", i);
    stop(status);
  });
}

} // namespace

TEST(Stop, KeepsTheStatusWhenTheConsoleTakesItAll) {
  std::string expected;
  for (int i = 0; i < 20000; ++i) expected += fmt::format("line {}\n", i);
  for (const int status : {0, 2, 12}) {
    const ChildResult run = runOf(untouched, 20000, status);
    EXPECT_EQ(run.status, status);
    EXPECT_EQ(run.console, expected);
  }
  for (const int printed : {1, 20000}) { // in the last piece, and long before it
    for (const auto before : {full, closedPipe, closed}) {
      EXPECT_EQ(runOf(before, printed, 0).status, 1);
      EXPECT_EQ(runOf(before, printed, 2).status, 1);
    }
  }
  const ChildResult nothing = runChild([] { // nothing to write: only the close reports it
    closed();
    stop(0);
  });
  EXPECT_EQ(nothing.status, 1);
}

TEST(Console, NoFileTakesThePlaceOfAClosedConsole) {
  const Scratch scratch;
  const std::string name = scratch.file("model");
  const ChildResult run = runChild([&] {
    close(STDIN_FILENO);
    closed();
    console::prepare();
    open(name.c_str(), O_WRONLY | O_CREAT, 0666);
    console::line("for the console only");
    stop(0);
  });
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(contentOf(name), "");
}

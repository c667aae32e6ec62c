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

void standardOutputTo(int descriptor) {
  dup2(descriptor, STDOUT_FILENO);
  close(descriptor);
}

void full() { standardOutputTo(open("/dev/full", O_WRONLY)); }

void closedPipe() {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  close(ends[0]);
  standardOutputTo(ends[1]);
}

// A run that prints so many lines and ends with the status given.
ChildResult runOf(const std::function<void()>& before, int printed, int status) {
  return runChild([&] {
    std::signal(SIGPIPE, SIG_DFL);
    before();
    console::prepare();
    for (int i = 0; i < printed; ++i) console::print("line {}", i);
    stop(status);
  });
}

} // namespace

TEST(Console, LinesFramesAndRules) {
  const ChildResult run = runChild([] {
    console::text("no end");
    console::line(" here");
    console::print(" n = {:12}", 3);
    console::rule('=', 5);
    console::openStars();
    console::line("what is wrong");
    console::closeStars();
    stop(1);
  });
  const std::string stars(43, '*');
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.console, lines({"no end here", " n =            3", "=====", "", stars,
                                "Corvo.exe: ERROR", "what is wrong", stars}));
}

TEST(Stop, KeepsTheStatusAndAllThatWasPrinted) {
  std::string expected;
  for (int i = 0; i < 20000; ++i) expected += fmt::format("line {}\n", i);
  for (const int status : {0, 1, 2, 12}) {
    const ChildResult run = runOf([] {}, 20000, status);
    EXPECT_EQ(run.status, status);
    EXPECT_EQ(run.console, expected);
  }
}

TEST(Stop, IsOneWhenTheConsoleDoesNotTakeItAll) {
  for (const int printed : {1, 20000}) { // in the last piece, and long before it
    EXPECT_EQ(runOf(full, printed, 0).status, 1);
    EXPECT_EQ(runOf(full, printed, 2).status, 1);
    EXPECT_EQ(runOf(closedPipe, printed, 0).status, 1);
    EXPECT_EQ(runOf([] { close(STDOUT_FILENO); }, printed, 0).status, 1);
  }
  const ChildResult nothing = runChild([] {
    close(STDOUT_FILENO); // nothing to write: only the close reports it
    stop(0);
  });
  EXPECT_EQ(nothing.status, 1);
}

TEST(Console, NoFileTakesThePlaceOfAClosedConsole) {
  const Scratch scratch;
  const std::string name = scratch.file("model");
  const ChildResult run = runChild([&] {
    close(STDIN_FILENO);
    close(STDOUT_FILENO);
    console::prepare();
    open(name.c_str(), O_WRONLY | O_CREAT, 0666);
    console::line("for the console only");
    stop(0);
  });
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(contentOf(name), "");
}

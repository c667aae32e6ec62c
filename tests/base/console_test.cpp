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

enum Console { SOUND, FULL, BROKENPIPE, CLOSED };

// A run with such a console that prints so many lines and ends with the status given.
ChildResult runOf(Console kind, int printed, int status, const std::string& file = "") {
  return runChild([&] {
    std::signal(SIGPIPE, SIG_DFL);
    int ends[2];
    if (pipe(ends) != 0) stop(99);
    close(ends[0]);
    if (kind == FULL) dup2(open("/dev/full", O_WRONLY), STDOUT_FILENO);
    if (kind == BROKENPIPE) dup2(ends[1], STDOUT_FILENO);
    if (kind == CLOSED) close(STDOUT_FILENO);
    if (!file.empty()) close(STDIN_FILENO);
    if (printed > 0) console::prepare();
    if (!file.empty()) open(file.c_str(), O_WRONLY | O_CREAT, 0666);
    for (int i = 0; i < printed; ++i) console::print("line {}", i);
    stop(status);
  });
}

} // namespace

TEST(Stop, KeepsTheStatusWhenTheConsoleTakesItAll) {
  std::string expected;
  for (int i = 0; i < 20000; ++i) expected += fmt::format("line {}\n", i);
  for (const int status : {0, 2, 12}) {
    const ChildResult run = runOf(SOUND, 20000, status);
    EXPECT_EQ(run.status, status);
    EXPECT_EQ(run.console, expected);
    for (const int printed : {1, 20000}) { // in the last piece, and long before it
      for (const auto kind : {FULL, BROKENPIPE, CLOSED})
        EXPECT_EQ(runOf(kind, printed, status).status, 1) << kind << printed << status;
    }
  }
  EXPECT_EQ(runOf(CLOSED, 0, 0).status, 1); // nothing to write: only the close reports it
}

TEST(Console, NoFileTakesThePlaceOfAClosedConsole) {
  const Scratch scratch;
  const std::string name = scratch.file("model");
  EXPECT_EQ(runOf(CLOSED, 1, 0, name).status, 1);
  EXPECT_EQ(contentOf(name), "");
}

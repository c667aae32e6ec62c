// What the runner of whole runs itself does, on a shell in the place of the program.
#include "support/whole_run.h"

#include "support/scratch.h"

#include <gtest/gtest.h>

using namespace lcp::test;
namespace fs = std::filesystem;

namespace {

ProgramRun shell(const std::string& script, const fs::path& directory, unsigned seconds = 20) {
  return runCommand("/bin/sh", {"-c", script}, directory, seconds);
}

constexpr const char* SNAPSHOT = "snapshot of this program: guards the layout only\n";

// A case that a shell runs: prints, reads its input file, writes two files, ends with 2.
void makeCase(const Scratch& scratch) {
  scratch.file("input.txt", "1.500000\n");
  scratch.file("arguments", "input.sh\n");
  scratch.file("input.sh", "echo running\nmkdir sub\ncat input.txt > a.out\n"
                           "echo deep > sub/b.out\nexit 2\n");
  scratch.file("console", "running\n");
  scratch.file("status", "2\n");
  scratch.file("tolerance", "matrix 1e-6\nscalar 1e-6\n");
  scratch.file("source", "made by hand for this test\n");
  fs::create_directories(scratch.path() / "expected" / "sub");
  scratch.file("expected/a.out", "1.500001\n");
  scratch.file("expected/sub/b.out", "deep\n");
}

} // namespace

TEST(RunCommand, StatusConsoleAndFiles) {
  const Scratch scratch;
  scratch.file("same", "as before");
  scratch.file("old", "as before");
  const ProgramRun run = shell("echo out; echo err >&2; echo new > new; echo changed > old;"
                               "echo last; exit 12",
                               scratch.path());
  EXPECT_EQ(run.status, 12);
  EXPECT_EQ(run.console, "out\nerr\nlast\n");
  EXPECT_EQ(run.files,
            (std::map<std::string, std::string>{{"new", "new\n"}, {"old", "changed\n"}}));
}

TEST(RunCommand, ArgumentsArriveAsTheyAre) {
  const Scratch scratch;
  const ProgramRun run = runCommand("/bin/sh", {"-c", "printf '<%s>' \"$@\"", "sh", "a b", "", "*"},
                                    scratch.path(), 20);
  EXPECT_EQ(run.console, "<a b><><*>");
}

TEST(RunCommand, SignalsTimeLimitAndMissingCommands) {
  const Scratch scratch;
  const ProgramRun killed = shell("kill -9 $$", scratch.path());
  EXPECT_EQ(killed.status, -1);
  EXPECT_FALSE(killed.timedOut);
  const ProgramRun late = shell("echo start; while :; do :; done", scratch.path(), 1);
  EXPECT_EQ(late.status, -1);
  EXPECT_TRUE(late.timedOut);
  EXPECT_EQ(late.console, "start\n");
  EXPECT_EQ(runCommand(scratch.file("none"), {}, scratch.path(), 20).status, 127);
}

TEST(WholeRunCase, PassesWhenAllIsAsExpected) {
  const Scratch scratch;
  makeCase(scratch);
  EXPECT_EQ(caseDifferences(scratch.path(), "/bin/sh"), "");
  EXPECT_FALSE(fs::exists(scratch.path() / "a.out")); // it ran elsewhere
}

TEST(WholeRunCase, EachPartCanFail) {
  struct {
    const char* file;
    const char* text; // nullptr: without the file
    const char* told;
  } const changes[] = {
      {"status", "0\n", "status 2, expected 0"},
      {"status", nullptr, "no file status"},
      {"console", "runs\n", "console:\nline 1: text"},
      {"console", nullptr, "no file console"},
      {"expected/a.out", "1.500002\n", "a.out:\nline 1: number at column 1"},
      {"expected/a.out", nullptr, "a.out was written"},
      {"expected/sub/b.out", "dee\n", "sub/b.out:\nline 1: text"},
      {"expected/c.out", "more\n", "c.out was not written"},
      {"tolerance", "matrix 1e-6\n", "bad tolerance"},
      {"tolerance", nullptr, "no file tolerance"},
      {"source", "snapshot of a run\n", "source of a snapshot is not"},
      {"source", "two lines of source\nand another\n", "source is not one line"},
      {"source", nullptr, "no file source"},
      {"arguments", nullptr, "no file arguments"},
      {"input.sh", "exit 0\n", "status 0, expected 2"},
      {"input.sh", "kill -11 $$\n", "status signal, expected 2"},
  };
  for (const auto& change : changes) {
    const Scratch scratch;
    makeCase(scratch);
    if (change.text != nullptr) {
      scratch.file(change.file, change.text);
    } else {
      fs::remove(scratch.path() / change.file);
    }
    const std::string report = caseDifferences(scratch.path(), "/bin/sh");
    EXPECT_NE(report.find(change.told), std::string::npos) << change.file << ": " << report;
  }
}

TEST(WholeRunCase, OnlySnapshotsAreRewritten) {
  const Scratch scratch;
  makeCase(scratch);
  scratch.file("expected/gone.out", "no longer written\n");
  EXPECT_EQ(rewriteCase(scratch.path(), "/bin/sh"), "not a snapshot\n");
  EXPECT_EQ(contentOf(scratch.file("expected/a.out")), "1.500001\n");

  scratch.file("source", SNAPSHOT);
  for (const char* part : {"console", "status"}) fs::remove(scratch.path() / part);
  EXPECT_EQ(rewriteCase(scratch.path(), "/bin/sh"), "");
  EXPECT_EQ(contentOf(scratch.file("expected/a.out")), "1.500000\n");
  EXPECT_EQ(contentOf(scratch.file("console")), "running\n");
  EXPECT_EQ(contentOf(scratch.file("status")), "2\n");
  EXPECT_EQ(caseDifferences(scratch.path(), "/bin/sh"), "");

  scratch.file("input.sh", "kill -9 $$\n");
  EXPECT_EQ(rewriteCase(scratch.path(), "/bin/sh"), "the run did not end by itself\n");
  EXPECT_EQ(contentOf(scratch.file("status")), "2\n");
}

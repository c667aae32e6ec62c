// Text files: reading, writing, and failures of both.
#include "base/console.h"
#include "base/stop.h"
#include "base/text_file.h"
#include "base/text_source.h"
#include "support/child.h"
#include "support/scratch.h"

#include <cmath>
#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

using namespace lcp;
using lcp::test::Scratch;
using namespace lcp::test;

namespace {

std::string refused(const std::string& words) {
  const std::string stars(43, '*');
  return lines({"", stars, "Corvo.exe: ERROR", words, stars});
}

struct Write {
  EarlyEnd end = EarlyEnd::REMOVE;
  int lines = 0;                    // of eleven characters
  bool closes = true;               // or the run ends first
  bool lost = false;                // the descriptor is closed before the end
  rlim_t mostBytes = RLIM_INFINITY; // file size limit
  double last = 0;                  // a number after the lines
};

ChildResult writeRun(const std::string& name, const Write& w) {
  return runChild([&] {
    console::prepare();
    const rlimit limit{w.mostBytes, w.mostBytes};
    setrlimit(RLIMIT_FSIZE, &limit);
    const int descriptor = dup(STDOUT_FILENO); // the one that the next open will get
    close(descriptor);
    TextFile file;
    if (!file.open(name, w.end)) stop(7);
    for (int i = 0; i < w.lines; ++i) file.line("0123456789");
    if (w.last != 0) file.line(Record().general(w.last, 16, 8));
    if (w.lost) close(descriptor);
    if (w.closes) file.close();
    stop(w.closes ? 0 : 12);
  });
}

enum Console { SOUND, FULL, BROKENPIPE, CLOSED, MENDED }; // full until the run ends

// A run with such a console that prints `printed` lines and ends with the given status.
ChildResult runOf(Console kind, int printed, int status) {
  return runChild([&] {
    std::signal(SIGPIPE, SIG_DFL);
    int ends[2];
    if (pipe(ends) != 0) stop(99);
    close(ends[0]);
    const int sound = dup(STDOUT_FILENO);
    if (kind == FULL || kind == MENDED) dup2(open("/dev/full", O_WRONLY), STDOUT_FILENO);
    if (kind == BROKENPIPE) dup2(ends[1], STDOUT_FILENO);
    if (kind == CLOSED) close(STDOUT_FILENO);
    if (printed > 0) console::prepare();
    for (int i = 0; i < printed; ++i) console::print("line {}", i);
    if (kind == MENDED) dup2(sound, STDOUT_FILENO);
    stop(status);
  });
}

} // namespace

using Result = TextSource::Result;

namespace {

// The records up to the end of the file; a truncated one is followed by a bar.
std::vector<std::string> readAll(const std::string& name, std::size_t columns) {
  std::vector<std::string> records;
  TextSource source;
  EXPECT_TRUE(source.open(name));
  Result end;
  for (std::string record; (end = source.next(record, columns)) == Result::Record;)
    records.push_back(record + (source.wasCut() ? "|" : ""));
  EXPECT_EQ(end, Result::End);
  std::string more;
  EXPECT_EQ(source.next(more, columns), end); // the end stays the end
  return records;
}

std::string operator""_s(const char* text, std::size_t length) { return {text, length}; }

} // namespace

TEST(TextSource, Records) {
  const std::string ten = "0123456789", start = "The start of a line that is kept ";
  const std::pair<std::string, std::vector<std::string>> cases[] = {
      {"", {}},
      {"\n", {""}},
      {"a\n\nb", {"a", "", "b"}},
      {"a\r\nb\r\n", {"a", "b"}},
      {"a\r", {"a"}},
      {"a\rb\r\r\n", {"a\rb\r"}}, // only the return at the line end goes
      {"a\0b\n\0"_s, {"a\0b"_s, "\0"_s}},
      {"\xef\xbb\xbf" + ten + "\n\xef\xbb\xbf", {ten, "\xef\xbb\xbf"}}, // a mark at the start only
      {"\xef\xbb\xbf", {}},
      {"\xef\xbb", {"\xef\xbb"}},
      {ten + "\n" + ten + "\r\n" + ten, {ten, ten, ten}},
      {ten + "x\n" + ten + "\rx\nb", {ten + "|", ten + "|", "b"}},
  };
  const Scratch scratch;
  for (const auto& [content, records] : cases)
    EXPECT_EQ(readAll(scratch.file("case", content), 10), records) << content;
  std::string content; // longer lines than any buffer
  for (std::size_t i = 0; i < 5; ++i) content += start + std::string(16380 * i, 'x') + "\r\n";
  const std::string cut = start + "|", name = scratch.file("long", content);
  EXPECT_EQ(readAll(name, 33), (std::vector<std::string>{start, cut, cut, cut, cut}));
  EXPECT_EQ(readAll(name, 100000).at(4).size(), 33U + 4 * 16380U);
}

TEST(TextSource, OpensRegularFilesOnly) {
  const Scratch scratch;
  const std::string good = scratch.file("good", "text"), pipe = scratch.file("pipe");
  ASSERT_EQ(mkfifo(pipe.c_str(), 0666), 0);
  TextSource source;
  std::string record;
  for (const std::string& name :
       {std::string(), std::string("    "), scratch.path().string(), std::string("/dev/null"),
        scratch.file("missing"), pipe, good + "/x", std::string(5000, 'n')}) {
    EXPECT_TRUE(source.open(good + "     "));
    EXPECT_FALSE(source.open(name)) << name; // and no longer the file before it
    EXPECT_EQ(source.next(record, 10), Result::Error);
  }
  EXPECT_TRUE(source.open(good) && source.open(good)); // from its start again
  EXPECT_EQ(source.next(record, 10), Result::Record);
  EXPECT_EQ(record, "text");
}

TEST(TextFile, WritesWhenClosedAndReplacesWhatStood) {
  const Scratch scratch;
  const std::string name = scratch.file("a.out", "an older and longer file\nof two lines\n");
  TextFile file;
  ASSERT_TRUE(file.open(name + "   ", EarlyEnd::KEEP));
  EXPECT_EQ(contentOf(name), ""); // emptied at its point of the run
  file.line(Record(" ").integer(7, 3).column(8).fixed(0.5, 6, 2).blanks(1).text("V"));
  file.line(Record().scientific(2.5, 10, 3).general(2.5, 10, 3).column(3).text("/"));
  EXPECT_EQ(contentOf(name), "");
  file.close();
  EXPECT_EQ(contentOf(name), lines({"   7     0.50 V", " 0.250E+01  2.50    /"}));
  file.close(); // once closed, no more
  for (const std::string& bad : {std::string("   "), scratch.path().string(), name + "/",
                                 scratch.file("missing/a.out"), std::string(300, 'n')}) {
    EXPECT_FALSE(file.open(bad, EarlyEnd::KEEP)) << bad;
    file.line("lost");
    file.close(); // no file, nothing to report
  }
}

// A file is complete or as its early end says: after a failed write, a failed close, and where the
// run stops.
TEST(TextFile, EarlyEnds) {
  const Scratch scratch;
  const std::string name = scratch.file("a.out"),
                    write = refused("Error in Writing Output File: " + name);
  const std::string number = refused("Values that are no Finite Numbers in Output File: " + name);
  const struct {
    Write w;
    std::string console;
    int status, left; // characters; -1 for no file
  } cases[] = {
      {{EarlyEnd::REMOVE, 100, true, false, 1100}, "", 0, 1100},
      {{EarlyEnd::REMOVE, 100, true, false, 1000}, write, 1, -1},
      {{EarlyEnd::EMPTY, 100, true, false, 1000}, write, 1, 0},
      {{EarlyEnd::KEEP, 100, true, false, 1000}, write, 1, 1000},
      {{EarlyEnd::REMOVE, 0, true, true}, write, 1, -1}, // only the close can fail
      {{EarlyEnd::KEEP, 1, true, true}, write, 1, 0},
      {{EarlyEnd::REMOVE, 9, false}, "", 12, -1},
      {{EarlyEnd::EMPTY, 9, false}, "", 12, 0},
      {{EarlyEnd::KEEP, 9, false}, "", 12, 99},
      {{EarlyEnd::KEEP, 100, false, false, 1000}, write, 1, 1000},
      {{EarlyEnd::KEEP, 0, false, true}, write, 1, 0},
      {{EarlyEnd::REMOVE, 9, false, true}, "", 12, -1},
      {{EarlyEnd::KEEP, 1, true, false, RLIM_INFINITY, NAN}, number, 1, 11},
      {{EarlyEnd::REMOVE, 1, true, false, RLIM_INFINITY, INFINITY}, number, 1, -1},
  };
  for (const auto& c : cases) {
    scratch.file("a.out", "what stood");
    const ChildResult run = writeRun(name, c.w);
    const int left = std::filesystem::exists(name) ? int(contentOf(name).size()) : -1;
    EXPECT_EQ(std::tuple(run.status, run.console, left), std::tuple(c.status, c.console, c.left))
        << &c - cases;
  }
}

// A file that is not regular is neither waited for nor removed.
TEST(TextFile, DevicesAndPipes) {
  const Scratch scratch;
  const std::string name = scratch.file("fifo");
  ASSERT_EQ(mkfifo(name.c_str(), 0600), 0);
  EXPECT_EQ(writeRun(name, {}).status, 7);
  const int reader = open(name.c_str(), O_RDONLY | O_NONBLOCK); // changes nothing
  const std::tuple<std::string, int, int> cases[] = {
      {name, 0, 7},
      {"/dev/zero", 0, 7},
      {"/dev/null", 9, 0},
      {"/dev/full", 0, 0},
      {"/dev/full", 1, 1}}; // nothing to write, nothing lost
  for (const auto& [file, written, status] : cases) {
    EXPECT_EQ(writeRun(file, {EarlyEnd::REMOVE, written}).status, status) << file << written;
    EXPECT_TRUE(std::filesystem::exists(file));
  }
  close(reader);
}

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
  EXPECT_EQ(runOf(MENDED, 20000, 0).status, 1); // what was lost stays lost
  EXPECT_EQ(runOf(CLOSED, 0, 0).status, 1);     // nothing to write: only the close reports it
}

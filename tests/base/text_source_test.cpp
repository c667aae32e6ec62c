#include "base/text_source.h"

#include "support/scratch.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

using namespace lcp;
using lcp::test::Scratch;
using Result = TextSource::Result;

namespace {

struct Lines {
  std::vector<std::string> records;
  std::vector<bool> cut;
  Result end = Result::Record;
};

Lines readAll(const std::string& name, std::size_t columns) {
  Lines all;
  TextSource source;
  EXPECT_TRUE(source.open(name));
  for (std::string record; (all.end = source.next(record, columns)) == Result::Record;) {
    all.records.push_back(record);
    all.cut.push_back(source.wasCut());
  }
  EXPECT_EQ(source.next(all.records.emplace_back(), columns), all.end); // the end stays the end
  all.records.pop_back();
  return all;
}

std::string operator""_s(const char* text, std::size_t length) { return {text, length}; }

} // namespace

TEST(TextSource, Records) {
  const std::string ten = "0123456789";
  struct {
    std::string content;
    std::vector<std::string> records;
    std::vector<bool> cut;
  } const cases[] = {
      {"", {}, {}},
      {"\n", {""}, {false}},
      {"a", {"a"}, {false}},
      {"a\nb\n", {"a", "b"}, {false, false}},
      {"a\n\nb", {"a", "", "b"}, {false, false, false}},
      {"a\r\nb\r\n", {"a", "b"}, {false, false}},
      {"a\r", {"a"}, {false}},
      {"\r", {""}, {false}},
      {"a\rb\r\r\n", {"a\rb\r"}, {false}}, // only the return at the line end goes
      {"a\0b\n\0"_s, {"a\0b"_s, "\0"_s}, {false, false}},
      {"\xc3\xa9\xff\n", {"\xc3\xa9\xff"}, {false}},
      {ten + "\n" + ten + "\r\n" + ten, {ten, ten, ten}, {false, false, false}},
      {ten + "x\n" + ten + "\rx\nb", {ten, ten, "b"}, {true, true, false}},
  };
  const Scratch scratch;
  for (const auto& c : cases) {
    const Lines read = readAll(scratch.file("case", c.content), 10);
    EXPECT_EQ(read.records, c.records) << c.content;
    EXPECT_EQ(read.cut, c.cut) << c.content;
    EXPECT_EQ(read.end, Result::End);
  }
}

TEST(TextSource, LinesLongerThanAnyBuffer) {
  const Scratch scratch;
  const std::string start = "The start of a line that is kept ";
  std::string content;
  for (int i = 0; i < 5; ++i) {
    content += start + std::string(static_cast<std::size_t>(16380 * i), 'x') + "\r\n";
  }
  const Lines read = readAll(scratch.file("long", content), 33);
  EXPECT_EQ(read.records, std::vector<std::string>(5, start));
  EXPECT_EQ(read.cut, (std::vector<bool>{false, true, true, true, true}));
  const Lines whole = readAll(scratch.file("long"), 100000);
  ASSERT_EQ(whole.records.size(), 5U);
  EXPECT_EQ(whole.records[4].size(), 33U + 4 * 16380U);
}

TEST(TextSource, OpensRegularFilesOnly) {
  const Scratch scratch;
  const std::string good = scratch.file("good", "text");
  const std::string pipe = scratch.file("pipe");
  ASSERT_EQ(mkfifo(pipe.c_str(), 0666), 0);
  for (const std::string& name :
       {std::string(), std::string("    "), scratch.path().string(), std::string("/dev/null"),
        scratch.file("missing"), pipe, good + "/x", std::string(5000, 'n')}) {
    TextSource source;
    EXPECT_FALSE(source.open(name)) << name;
    std::string record;
    EXPECT_EQ(source.next(record, 10), Result::Error);
  }
  TextSource source;
  std::string record;
  EXPECT_TRUE(source.open(good + "     "));
  EXPECT_FALSE(source.open(scratch.file("missing"))); // and no longer the file before it
  EXPECT_EQ(source.next(record, 10), Result::Error);
  EXPECT_TRUE(source.open(good));
  EXPECT_TRUE(source.open(good)); // from its start again
  EXPECT_EQ(source.next(record, 10), Result::Record);
  EXPECT_EQ(record, "text");
}

TEST(TextSource, UnreadableFile) {
  if (geteuid() == 0) GTEST_SKIP() << "the superuser may read every file";
  const Scratch scratch;
  const std::string name = scratch.file("locked", "text");
  ASSERT_EQ(chmod(name.c_str(), 0), 0);
  EXPECT_FALSE(TextSource().open(name));
}

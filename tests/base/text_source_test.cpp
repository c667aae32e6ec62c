#include "base/text_source.h"

#include "support/scratch.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <vector>

using namespace lcp;
using lcp::test::Scratch;
using Result = TextSource::Result;

namespace {

// The records to the end of the file, each cut one with a bar behind.
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

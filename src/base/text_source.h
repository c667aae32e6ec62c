// A text file that is read: one record after another, the columns behind a limit dropped.
#pragma once

#include <array>
#include <cstdio>
#include <string>
#include <string_view>

namespace lcp {

class TextSource {
public:
  // Opens a regular file for reading. False for a missing or unreadable file, a directory, a
  // device, or a blank name; the name may have blanks behind it. A byte order mark of UTF-8 at the
  // start is dropped. No output may take the place of the file from now on, unless it may be one
  // itself; one that has ends the run with a message, exit status 1.
  bool open(std::string_view name, bool mayBeOutput = false);
  void close();

  enum class Result { Record, End, Error };

  // Reads the next record. At most `columns` characters are kept, what stands behind them is
  // dropped, and so is a carriage return at the end. A last line without a line end counts.
  Result next(std::string& record, std::size_t columns);
  bool wasCut() const { return cut; } // the last record was longer than the columns asked for

  TextSource() = default;
  TextSource(const TextSource&) = delete;
  TextSource& operator=(const TextSource&) = delete;
  ~TextSource() { close(); }

private:
  void skipByteOrderMark();
  int get(); // next character, EOF at the end or on an error

  int descriptor = -1;
  std::array<char, 1 << 14> buffer{};
  std::size_t at = 0;
  std::size_t filled = 0;
  bool failed = false;
  bool cut = false;
};

} // namespace lcp

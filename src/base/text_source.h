// Reads a text file record by record and drops the columns past a limit.
#pragma once

#include <array>
#include <cstdio>
#include <string>
#include <string_view>

namespace lcp {

class TextSource {
public:
  // Opens a regular file for reading. Returns false for a missing or unreadable file, a directory,
  // a device or a blank name; trailing blanks of the name are ignored. A UTF-8 byte order mark at
  // the start is skipped. From now on no output may overwrite the file, unless mayBeOutput; a file
  // that is already open as an output ends the run with a message and exit status 1.
  bool open(std::string_view name, bool mayBeOutput = false);
  void close();

  enum class Result { Record, End, Error };

  // Reads the next record and keeps at most `columns` characters of it. A carriage return at the
  // end of the line is dropped. A last line without a line end counts as a record.
  Result next(std::string& record, std::size_t columns);
  bool wasCut() const { return cut; } // the last record was longer than `columns`

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

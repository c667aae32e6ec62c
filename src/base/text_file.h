// A text file that is written: opened at its point of the run, collected, written when complete.
#pragma once

#include "base/record.h"

#include <string>
#include <string_view>

namespace lcp {

// Writes the whole text to an open file; false when the device does not take all of it.
bool writeAll(int descriptor, std::string_view text);

class TextFile {
public:
  // Creates or empties the file. False when it cannot be opened for writing. The name may have
  // blanks behind it; a blank name cannot be opened.
  bool open(std::string_view name);

  void line(std::string_view words = {}) { collected.append(words).push_back('\n'); }
  void line(const Record& record) { line(record.view()); }

  // Writes what was collected and closes the file. When the device does not take it to the last
  // character the file is emptied, and the run ends with a message and exit status 1.
  void close();

  TextFile() = default;
  TextFile(const TextFile&) = delete;
  TextFile& operator=(const TextFile&) = delete;
  ~TextFile();

private:
  std::string name;
  std::string collected;
  int descriptor = -1;
};

} // namespace lcp

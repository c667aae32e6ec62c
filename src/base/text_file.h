// A text file that is opened at its place in the run, collected in memory and written when
// complete.
#pragma once

#include "base/open_files.h"
#include "base/record.h"

#include <string_view>

namespace lcp {

class TextFile {
public:
  // Creates or empties the file; an open one starts anew. Returns false if it cannot be opened for
  // writing. Trailing blanks of the name are ignored; a blank name cannot be opened. A run that
  // ends before the file is closed leaves it as `end` says. If the file is an input of the run, it
  // is left as it is and the run ends with a message and exit status 1.
  bool open(std::string_view name, EarlyEnd end, Emptied emptied = Emptied::AT_OPENING);

  // Adds a line. A record with a number that is not finite ends the run with a message and exit
  // status 1.
  void line(std::string_view words = {}) { file.collected.append(words).push_back('\n'); }
  void line(const Record& record) {
    if (!record.finite()) refuseNumber();
    line(record.view());
  }

  // Writes what was collected and closes the file. If the device does not take all of it, the file
  // is left as its EarlyEnd says and the run ends with a message and exit status 1.
  void close();

  TextFile() = default;
  TextFile(const TextFile&) = delete;
  TextFile& operator=(const TextFile&) = delete;
  ~TextFile() { drop(); }

private:
  OpenFile file;

  void drop(); // closes the file without writing what was collected
  [[noreturn]] void refuseNumber() const;
};

} // namespace lcp

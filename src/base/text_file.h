// A text file that is written: opened at its point of the run, collected, written when complete.
#pragma once

#include "base/open_files.h"
#include "base/record.h"

#include <string_view>

namespace lcp {

class TextFile {
public:
  // Creates or empties the file, which starts anew if it is open. False when it cannot be opened
  // for writing. The name may have blanks behind it; a blank name cannot be opened. A run that ends
  // before the file is closed leaves of it what the early end says. An input of the run is left as
  // it is: the run ends with a message, exit status 1.
  bool open(std::string_view name, EarlyEnd end, Emptied emptied = Emptied::AT_OPENING);

  // A record with a value that is not finite ends the run with a message, exit status 1.
  void line(std::string_view words = {}) { file.collected.append(words).push_back('\n'); }
  void line(const Record& record) {
    if (!record.finite()) refuseNumber();
    line(record.view());
  }

  // Writes what was collected and closes the file. When the device does not take it to the last
  // character the run ends with a message and exit status 1, and the file as its early end says.
  void close();

  TextFile() = default;
  TextFile(const TextFile&) = delete;
  TextFile& operator=(const TextFile&) = delete;
  ~TextFile() { drop(); }

private:
  OpenFile file;

  void drop(); // closes it as it is
  [[noreturn]] void refuseNumber() const;
};

} // namespace lcp

// A text file that a run can do without: written as it grows, its trouble left to the caller.
#pragma once

#include "base/open_files.h"

#include <cstring>
#include <string_view>

namespace lcp {

class StreamFile {
public:
  // Creates or empties the file. False when it cannot be opened for writing, and when another run
  // has it open. A run that ends before the file is closed leaves what was put into it. An input of
  // the run is left as it is: the run ends with a message, exit status 1.
  bool create(std::string_view name);
  bool isOpen() const { return file.descriptor >= 0; }

  // Room for n characters behind what was written, n up to BLOCK; the caller fills all of it.
  char* room(std::size_t n) {
    std::string& block = file.collected;
    if (block.size() + n > BLOCK) spill();
    block.resize(block.size() + n);
    return block.data() + block.size() - n;
  }
  void put(std::string_view words) {
    if (!words.empty()) std::memcpy(room(words.size()), words.data(), words.size());
  }

  // When the device does not take the file to the last character it is left empty, and the run ends
  // with a message, exit status 1.
  void close();
  // Leaves the file empty.
  void discard();

  StreamFile() = default;
  StreamFile(const StreamFile&) = delete;
  StreamFile& operator=(const StreamFile&) = delete;
  ~StreamFile();

  static constexpr std::size_t BLOCK = 1 << 14; // characters collected before they are written

private:
  OpenFile file;

  void spill();
};

} // namespace lcp

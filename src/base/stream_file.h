// An optional text file, written as it grows; the caller decides what a failure means.
#pragma once

#include "base/open_files.h"

#include <cstring>
#include <string_view>

namespace lcp {

class StreamFile {
public:
  // Creates or empties the file. Returns false if it cannot be opened for writing or another run
  // has it open. A run that ends before the file is closed keeps what was written so far. If the
  // file is an input of the run, it is left as it is and the run ends with a message and exit
  // status 1.
  bool create(std::string_view name);
  bool isOpen() const { return file.descriptor >= 0; }

  // Room for n characters at the end, n up to BLOCK; the caller fills all of it.
  char* room(std::size_t n) {
    std::string& block = file.collected;
    if (block.size() + n > BLOCK) spill();
    block.resize(block.size() + n);
    return block.data() + block.size() - n;
  }
  void put(std::string_view words) {
    if (!words.empty()) std::memcpy(room(words.size()), words.data(), words.size());
  }

  // Writes the rest and closes the file. If the device does not take all of it, the file is left
  // empty and the run ends with a message and exit status 1.
  void close();
  // Closes the file and leaves it empty.
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

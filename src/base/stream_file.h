// A text file that a run can do without: written as it grows, its trouble left to the caller.
#pragma once

#include <array>
#include <cstring>
#include <string>
#include <string_view>

namespace lcp {

class StreamFile {
public:
  // Creates or empties the file, or opens one that stands to go on behind its end. False when it
  // cannot be opened for writing.
  bool create(std::string_view fileName);
  bool append(std::string_view fileName);

  // Room for n characters behind what was written, n up to BLOCK; the caller fills all of it.
  char* room(std::size_t n) {
    if (used + n > BLOCK) spill();
    char* at = block.data() + used;
    used += n;
    return at;
  }
  void put(std::string_view words) {
    if (!words.empty()) std::memcpy(room(words.size()), words.data(), words.size());
  }

  // False when the device did not take the file to the last character; the file is empty then.
  bool close();
  // Leaves the file empty.
  void discard();

  StreamFile() = default;
  StreamFile(const StreamFile&) = delete;
  StreamFile& operator=(const StreamFile&) = delete;
  ~StreamFile();

  static constexpr std::size_t BLOCK = 1 << 16; // characters collected before they are written

private:
  std::string name;
  std::array<char, BLOCK> block;
  std::size_t used = 0;
  int descriptor = -1;
  bool good = false;

  bool open(std::string_view fileName, int flags);
  void spill();
};

} // namespace lcp

#include "base/text_file.h"

#include "base/console.h"
#include "base/stop.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace lcp {

bool writeAll(int descriptor, std::string_view text) {
  while (!text.empty()) {
    const ssize_t n = write(descriptor, text.data(), text.size());
    if (n > 0) {
      text.remove_prefix(static_cast<std::size_t>(n));
    } else if (n == 0 || errno != EINTR) {
      return false;
    }
  }
  return true;
}

bool TextFile::open(std::string_view fileName) {
  const auto last = fileName.find_last_not_of(' ');
  name = fileName.substr(0, last == std::string_view::npos ? 0 : last + 1);
  if (name.empty()) return false;
  collected.clear();
  descriptor = ::open(name.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  return descriptor >= 0;
}

void TextFile::close() {
  if (descriptor < 0) return;
  bool good = writeAll(descriptor, collected);
  // Network file systems report a full device at the close only.
  good = (::close(descriptor) == 0) && good;
  descriptor = -1;
  collected.clear();
  if (good) return;
  // Empty rather than half. Where even that is refused, the message below has to do.
  [[maybe_unused]] const int emptied = ::truncate(name.c_str(), 0);
  console::openStars();
  console::print("Error in Writing Output File: {}", name);
  console::closeStars();
  stop(1);
}

TextFile::~TextFile() {
  if (descriptor >= 0) ::close(descriptor);
}

} // namespace lcp

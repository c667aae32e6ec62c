#include "base/stream_file.h"

#include "base/text_file.h"

#include <fcntl.h>
#include <unistd.h>

namespace lcp {

bool StreamFile::create(std::string_view fileName) { return open(fileName, O_CREAT | O_TRUNC); }

bool StreamFile::append(std::string_view fileName) { return open(fileName, O_APPEND); }

bool StreamFile::open(std::string_view fileName, int flags) {
  name = fileName;
  used = 0;
  descriptor = ::open(name.c_str(), O_WRONLY | O_CLOEXEC | flags, 0666);
  good = descriptor >= 0;
  return good;
}

void StreamFile::spill() {
  good = good && writeAll(descriptor, {block.data(), used});
  used = 0;
}

bool StreamFile::close() {
  if (descriptor < 0) return false;
  spill();
  good = (::close(descriptor) == 0) && good;
  descriptor = -1;
  if (!good) discard();
  return good;
}

void StreamFile::discard() {
  if (descriptor >= 0) ::close(descriptor);
  descriptor = -1;
  // Where even this is refused, the caller's message has to do.
  [[maybe_unused]] const int emptied = ::truncate(name.c_str(), 0);
}

StreamFile::~StreamFile() {
  if (descriptor >= 0) ::close(descriptor);
}

} // namespace lcp

#include "base/stream_file.h"

#include "base/write_all.h"

#include <unistd.h>

namespace lcp {

bool StreamFile::create(std::string_view name) {
  file.name = name;
  file.end = EarlyEnd::EMPTY;
  used = 0;
  good = openListed(file, true);
  return good;
}

void StreamFile::spill() {
  good = good && writeAll(file.descriptor, {block.data(), used});
  used = 0;
}

bool StreamFile::close() {
  if (!isOpen()) return false;
  spill();
  good = (::close(dropListed(file)) == 0) && good;
  if (!good) leave(file);
  return good;
}

void StreamFile::discard() {
  const int descriptor = dropListed(file);
  if (descriptor >= 0) ::close(descriptor);
  leave(file);
}

StreamFile::~StreamFile() {
  const int descriptor = dropListed(file);
  if (descriptor >= 0) ::close(descriptor);
}

} // namespace lcp

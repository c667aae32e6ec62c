#include "base/stream_file.h"

#include "base/close_listed.h"
#include "base/solve_error.h"

#include <unistd.h>

namespace lcp {

bool StreamFile::create(std::string_view name) {
  file.name = name;
  file.end = EarlyEnd::KEEP;
  file.collected.reserve(BLOCK);
  if (openListed(file, true)) return true;
  if (file.descriptor == ISINPUT) stopAtInput(file.name);
  return false;
}

void StreamFile::spill() {
  if (writeCollected(file, file.descriptor)) return;
  file.end = EarlyEnd::EMPTY;
  endUnwritten(file);
}

void StreamFile::close() {
  if (!isOpen()) return;
  file.end = EarlyEnd::EMPTY;
  closeListed(file);
}

void StreamFile::discard() {
  const int descriptor = dropListed(file);
  if (descriptor >= 0) ::close(descriptor);
  file.end = EarlyEnd::EMPTY;
  leave(file);
}

StreamFile::~StreamFile() {
  const int descriptor = dropListed(file);
  if (descriptor >= 0) ::close(descriptor);
}

} // namespace lcp

#include "base/close_listed.h"

#include "base/stop.h"

#include <unistd.h>

namespace lcp {

void closeListed(OpenFile& file) {
  if (file.descriptor < 0) return;
  bool good = writeCollected(file, file.descriptor);
  // Network file systems report a full device only when the file is closed.
  good = (close(dropListed(file)) == 0) && good;
  if (!good) endUnwritten(file);
}

void endUnwritten(OpenFile& file) {
  const int descriptor = dropListed(file);
  if (descriptor >= 0) close(descriptor);
  leave(file);
  sayCannotWrite(file.name);
  stop(1);
}

} // namespace lcp

#include "base/stop.h"

#include "base/console.h"

#include <cstdlib>
#include <unistd.h>

namespace lcp {

void stop(int status) {
  // Network file systems report a full device at the close only.
  const bool written = console::flush() && close(STDOUT_FILENO) == 0;
  std::_Exit(written ? status : 1);
}

} // namespace lcp

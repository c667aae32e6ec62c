#include "base/stop.h"

#include "base/console.h"
#include "base/open_files.h"

#include <cstdlib>
#include <unistd.h>

namespace lcp {

void stop(int status) {
  const bool filesWritten = endOpenFiles();
  // Network file systems report a full device only when the file is closed.
  const bool consoleWritten = console::flush() && close(STDOUT_FILENO) == 0;
  std::_Exit(filesWritten && consoleWritten ? status : 1);
}

} // namespace lcp

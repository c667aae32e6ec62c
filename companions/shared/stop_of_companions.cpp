// The one way out of the process, in the place of the program's own: what the library cannot go on
// with is, for a companion, something that it cannot tell.
#include "base/console.h"
#include "base/open_files.h"
#include "base/stop.h"
#include "companions/shared/captured_run.h"

#include <cstdlib>
#include <unistd.h>

namespace lcp {

void stop(int status) {
  constexpr int CANNOTTELL = 2;
  const bool filesWritten = endOpenFiles();
  const bool consoleWritten = console::flush() && close(STDOUT_FILENO) == 0;
  if (!filesWritten || !consoleWritten) status = 1;
  std::_Exit(companions::inCapturedRun() || status == 0 ? status : CANNOTTELL);
}

} // namespace lcp

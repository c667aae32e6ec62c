// Ends the process of a companion, replacing the program's own stop.
//
// A fatal error in the library means that the companion cannot give an answer.
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

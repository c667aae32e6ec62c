// Closes a file that is written, and ends the run when it could not be written.
#pragma once

#include "base/open_files.h"

namespace lcp {

// Writes what was collected and closes the file, if it is open. If the device does not take all of
// it, the run ends as in endUnwritten.
void closeListed(OpenFile& file);

// Ends the run after a file that could not be written: leaves the file as its EarlyEnd says, prints
// a message and exits with status 1.
[[noreturn]] void endUnwritten(OpenFile& file);

} // namespace lcp

// The end of a file that is written, or of the run that could not write it.
#pragma once

#include "base/open_files.h"

namespace lcp {

// Writes what was collected and closes the file, if it is open. When the device does not take it to
// the last character the run ends as below.
void closeListed(OpenFile& file);

// The end of a run with a file that could not be written: a message, the file as its early end
// says, exit status 1.
[[noreturn]] void endUnwritten(OpenFile& file);

} // namespace lcp

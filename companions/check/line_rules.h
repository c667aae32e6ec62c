// Findings on the lines of a description as they stand: what had no effect, and what was read as
// something else than it says.
#pragma once

#include "companions/check/finding.h"

namespace lcp::companions {

// Over the trace of the reader. wholeFile: it was not refused midway, so that what the trace lacks
// is missing.
void lineRules(Findings& findings, bool wholeFile);

} // namespace lcp::companions

// Findings on the lines of a description: without effect, or read differently from what they say.
#pragma once

#include "companions/check/finding.h"

namespace lcp::companions {

// Uses the trace of the reader. wholeFile: the file was read to its end, so what the trace lacks is
// missing in the file.
void lineRules(Findings& findings, bool wholeFile);

} // namespace lcp::companions

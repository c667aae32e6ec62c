// Findings on the lines of a description as they stand: what had no effect, and what was read as
// something else than it says.
#pragma once

#include "companions/check/finding.h"

namespace lcp::companions {

// Over the trace of the reader.
void lineRules(Findings& findings);

} // namespace lcp::companions

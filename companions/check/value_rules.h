// Findings on the value of a key.
#pragma once

#include "companions/check/finding.h"
#include "input/trace_store.h"

namespace lcp::companions {

// The line must have a key.
void valueRules(Findings& findings, const TracedLine& line);

} // namespace lcp::companions

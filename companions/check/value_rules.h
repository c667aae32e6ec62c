// Findings on the value of one key.
#pragma once

#include "companions/check/finding.h"
#include "input/trace_store.h"

namespace lcp::companions {

// Over a line that has a key.
void valueRules(Findings& findings, const TracedLine& line);

} // namespace lcp::companions

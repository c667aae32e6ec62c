// Findings on data entered by hand.
#pragma once

#include "companions/check/finding.h"
#include "input/trace_store.h"

namespace lcp::companions {

// Unit in brackets, and whether the format has such a value: both depend on the format above the
// line.
void enteredLine(Findings& findings, const TracedLine& line);

// Sequence values as a whole.
void enteredRules(Findings& findings);

} // namespace lcp::companions

// Findings on keys whose values are one of a few numbers or usually lie in a known range.
#pragma once

#include "companions/check/finding.h"
#include "input/trace_store.h"

namespace lcp::companions {

void rangeRules(Findings& findings, const TracedLine& line);

} // namespace lcp::companions

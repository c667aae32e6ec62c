// Findings on options: values that make a result useless.
#pragma once

#include "companions/check/finding.h"

namespace lcp::companions {

// Uses the run store after reading.
void optionRules(Findings& findings);

} // namespace lcp::companions

// Findings on earth return formulas: numbers that do not exist, and formulas outside their range.
#pragma once

#include "companions/check/finding.h"

namespace lcp::companions {

// Uses the run store after the reader.
void earthRules(Findings& findings);

} // namespace lcp::companions

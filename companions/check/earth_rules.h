// Findings on the formulas of the earth return: numbers that there are not, and formulas outside of
// what they are good for.
#pragma once

#include "companions/check/finding.h"

namespace lcp::companions {

// Over the run store behind the reader.
void earthRules(Findings& findings);

} // namespace lcp::companions

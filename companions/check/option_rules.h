// Findings on options: defaults that make a result void, formulas outside of what they are good
// for.
#pragma once

#include "companions/check/finding.h"

namespace lcp::companions {

// Over the run store behind the reader.
void optionRules(Findings& findings);

} // namespace lcp::companions

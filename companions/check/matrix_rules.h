// Findings on Y and Z read from a file.
#pragma once

#include "companions/check/finding.h"

namespace lcp::companions {

void matrixRules(Findings& findings);

} // namespace lcp::companions

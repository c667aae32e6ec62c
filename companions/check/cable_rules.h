// Findings on cables and pipes: layers, materials, positions and groups.
#pragma once

#include "companions/check/finding.h"

namespace lcp::companions {

void cableRules(Findings& findings);

} // namespace lcp::companions

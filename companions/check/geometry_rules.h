// Findings on geometry and materials: values that can be read but are hardly possible.
#pragma once

#include "companions/check/finding.h"

namespace lcp::companions {

// All use the run store after reading, for a system with a geometry.
void conductorRules(Findings& findings);
void cableRules(Findings& findings);
void soilRules(Findings& findings);

} // namespace lcp::companions

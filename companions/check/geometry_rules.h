// Findings on geometry and materials: what can be read, and is hardly a line or a cable.
#pragma once

#include "companions/check/finding.h"

namespace lcp::companions {

// Over the run store behind the reader, of a system that has a geometry.
void conductorRules(Findings& findings);
void cableRules(Findings& findings);
void soilRules(Findings& findings);

} // namespace lcp::companions

// Findings on overhead conductors and the soil: values that can be read but are hardly possible.
#pragma once

#include "companions/check/finding.h"

namespace lcp::companions {

void conductorRules(Findings& findings);
void soilRules(Findings& findings);

// Number of conductors and their nodes, for a line that the reader refuses.
void nodeRules(Findings& findings);

} // namespace lcp::companions

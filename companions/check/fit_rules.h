// Findings on the steady state frequency and on the range, poles and errors of the fits.
#pragma once

#include "companions/check/finding.h"

namespace lcp::companions {

void fitRules(Findings& findings);

} // namespace lcp::companions

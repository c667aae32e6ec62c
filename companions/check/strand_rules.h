// Findings on the strands of an overhead conductor: their numbers, and whether they fit its radius.
#pragma once

#include "companions/check/finding.h"

#include <string>

namespace lcp::companions {

void strandRules(Findings& findings, int i, int section, const std::string& name);

} // namespace lcp::companions
